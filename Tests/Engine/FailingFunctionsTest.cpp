// Functions of other plug-ins: what they throw, and what they evaluate themselves.

#include "ExpressionEvaluatorFunctions.h"
#include "Support/ChildProcess.h"
#include "Support/Expressions.h"
#include "Support/HostTexts.h"
#include "Text/Abort.h"

#include <functional>

namespace {
class TestFunction : public EEFunction
{
public:
    using Body = std::function<void(EEToken& result, EETokenStack& arguments, ExpressionEvaluator& evaluator)>;

    TestFunction(const wchar_t* name, Body body) : EEFunction(name, 1), body(std::move(body)) {}
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator* evaluator) override
    {
        body(result, arguments, *evaluator);
    }

private:
    const Body body;
};

template <typename Exception>
TestFunction::Body Throw(const Exception& exception)
{
    return [exception](auto&...) { throw exception; };
}

/// The outcome of its argument as a text, whatever it is.
void EvaluateInside(EEToken& result, EETokenStack& arguments, ExpressionEvaluator& evaluator)
{
    result.SetValue(WString::FromUtf8(Outcome(evaluator, arguments.Pop().ToString().ToUtf8())));
}

void Recur(EEToken& result, EETokenStack& arguments, ExpressionEvaluator& evaluator)
{
    double level = arguments.Pop().GetNumber() + 1;
    const WString call = WString::Format(L"recur(%f)", level);
    if (!evaluator.TryEvaluateDouble(call, level) && DescribeError(evaluator).find("513 ") != 0)
        throw std::runtime_error(DescribeError(evaluator));
    result.SetValue(level);
}

/// Adds functions, which cannot be taken away again, in a process of their own.
template <typename Checks>
void WithTestFunctions(const Checks& checks)
{
    ChildProcess process([&] {
        const std::pair<const wchar_t*, TestFunction::Body> functions[] = {
            {L"aborted", Throw(HostException(HostError::Aborted))},
            {L"broken", Throw(std::runtime_error("100%s"))},
            {L"odd", Throw(1)},
            {L"full", Throw(std::bad_alloc())},
            {L"unset", [](auto&...) {}},
            {L"inside", EvaluateInside},
            {L"recur", Recur},
            {L"set",
                [](EEToken& result, EETokenStack& arguments, ExpressionEvaluator& evaluator) {
                    evaluator.SetVariable(L"x", result = arguments.Pop());
                }},
            {L"ctrlc",
                [](EEToken& result, auto&...) {
                    Abort::Request();
                    result.SetValue(1.0);
                }},
            {L"ctrlcthrow",
                [](auto&...) {
                    Abort::Request();
                    throw std::runtime_error("not the abort");
                }},
            {L"twice",
                [](EEToken& result, EETokenStack& arguments, ExpressionEvaluator& evaluator) {
                    evaluator.TryEvaluate(arguments.Pop().ToString(), result);
                    evaluator.TryEvaluate(L"1+1", result);
                }},
        };
        for (const auto& [name, body] : functions)
            fnTable_gb.AddFn(new TestFunction(name, body));
        checks();
        return !testing::Test::HasFailure();
    });
    EXPECT_TRUE(process.Wait());
}

/// The outcome and the reason behind it.
std::string OutcomeAndReason(const std::string& expression)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    std::string outcome = Outcome(evaluator, expression);
    if (WString reason; evaluator.TryGetErrorReason(reason))
        outcome += ": " + reason.ToUtf8();
    return outcome;
}
} // namespace

TEST(FailingFunctions, NothingTurnsAnAbortIntoAValue)
{
    WithTestFunctions([] {
        for (const char* expression : {"aborted(1)", "IsErr(aborted(1))", "IF(true, 1, aborted(1))",
                 "IF(IsErr(nosuch(1)), 1, aborted(1))", "inside(\"IsErr(aborted(1))\")",
                 "inside(\"nosuch(1)\")&inside(\"aborted(1)\")", "IsErr(twice(\"aborted(1)\"))"})
            EXPECT_EQ(Outcome(expression), "0:1:4 Aborted @0") << expression;
        for (const char* expression : {"IsErr(ctrlcthrow(1))", "inside(\"ctrlc(1)\")"})
            EXPECT_EQ(Outcome(expression), "0:1:4 Aborted @0") << expression;
    });
}

TEST(FailingFunctions, ExceptionsAreErrorValuesWithAReason)
{
    const std::string unexpected = "0:1:1 #Error: 0:1:1 @";
    WithTestFunctions([&] {
        EXPECT_EQ(OutcomeAndReason("1+broken(1)"), unexpected + "9: Unexpected exception: 100%s");
        EXPECT_EQ(OutcomeAndReason("odd(1)"), unexpected + "4: Unexpected exception");
        EXPECT_EQ(Outcome("IsErr(broken(1)) and IsErr(odd(1))"), "TRUE");
        EXPECT_EQ(Outcome("IF(true, broken(1), odd(1))"), unexpected + "16");
        EXPECT_EQ(Outcome("IsErr(full(1))"), "0:1:13 Out of memory @0");
        EXPECT_EQ(Outcome("1+unset(1)"), "13 #UNK @8");
        EXPECT_EQ(Outcome("unset(1)"), "13 #UNK @6");
    });
}

TEST(FailingFunctions, TheReasonIsThatOfTheErrorAndNoOther)
{
    const std::string error = "0:1:10 #Error: 0:1:10 @";
    EXPECT_EQ(OutcomeAndReason("IF(true,FileSize(\"/dev\"),FileSize(\"/\"))"),
        error + "17: File error: /dev: Is a directory");
    EXPECT_EQ(
        OutcomeAndReason("IF(false,FileSize(\"/dev\"),FileSize(\"/\"))"), error + "35: File error: /: Is a directory");
    EXPECT_EQ(OutcomeAndReason("IF(IsErr(FileSize(\"/\")),1/0,2)"), "133 Divide by zero @27");
    EXPECT_EQ(OutcomeAndReason("Max(1,FileSize(\"/\"))"), error + "15: File error: /: Is a directory");
}

TEST(FailingFunctions, AnEvaluationInsideLeavesTheOuterOneAlone)
{
    WithTestFunctions([] {
        ExpressionEvaluator evaluator(nullptr, EvaluatorFlags::traceVariables);
        WString name;
        EXPECT_EQ(Outcome(evaluator, "inside(\"1/0\")"), "'133 Divide by zero @3'");
        EXPECT_EQ(Outcome(evaluator, "inside(\"1+1\") & (1+kaka)"), "48 Missing variable: kaka @20");
        // The outer error comes first and stays, with the missing name and the reason that belong to it.
        EXPECT_EQ(
            Outcome(evaluator, "IF(false, nosuch(1), inside(\"1+other\")) & 1/0"), "201 Unknown function: nosuch @11");
        EXPECT_EQ(Outcome(evaluator, "inside(\"1+other\") & missing"), "48 Missing variable: missing @21");
        EXPECT_TRUE(evaluator.TryGetMissingVariableName(name) && name == L"missing");
        EXPECT_EQ(OutcomeAndReason("inside(\"FileSize(1)\") & FileSize(\"/\")"),
            "0:1:10 #Error: 0:1:10 @33: File error: /: Is a directory");

        evaluator.Clear();
        Outcome(evaluator, "set(7) & inside(\"inside(\\\"x+0\\\")\") & abs(pi)");
        EXPECT_EQ(evaluator.GetVariableTrace().ToUtf8(),
            "pi=3.14159265358979\nFunction:set=7\nx=7\nFunction:inside=7\nFunction:inside='7'\n"
            "Function:abs=3.14159265358979");

        // A function may even change the text that is being evaluated.
        EETokenMap map(1);
        map.SetVariable(L"x", L"set(1) & \"a literal that is longer than 15 characters\"");
        evaluator.SetVariableMap(&map);
        EEToken result;
        EXPECT_TRUE(evaluator.TryEvaluate(map.GetVariable(L"x")->GetText(), result));
        EXPECT_EQ(result.GetText(), L"1a literal that is longer than 15 characters");
    });
}

TEST(FailingFunctions, RecursionThroughTheEvaluatorHasTheLimitOfNestedCalls)
{
    WithTestFunctions([] { EXPECT_EQ(Outcome("recur(1)"), "201"); });
}
