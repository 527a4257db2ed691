#include "Services/ObjectCounters.h"
#include "Support/Expressions.h"
#include "Support/HostTexts.h"
#include "Support/ThrownError.h"

#include <map>

namespace {
template <typename Value, typename Form>
std::string Typed(Form form, const wchar_t* expression)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    Value value{};
    if (!(evaluator.*form)(expression, value))
        return DescribeError(evaluator);
    return WString::Format(std::is_same_v<Value, double> ? L"%g" : L"%d", value).ToUtf8();
}
} // namespace

TEST(Evaluator, TypedForms)
{
    const std::string none = " Expression cannot be evaluated as a number @0";
    const struct
    {
        const wchar_t* expression;
        std::string asDouble;
        std::string asInt;
        std::string asBool;
    } rows[] = {
        {L"3>2", "1", "1", "1"},
        {L"\"1F\"", "31", "31", "131" + none},
        {L"-7.9", "-7.9", "-7", "0"},
        {L"1e10", "1e+10", "2147483647", "0"},
        {L"-1e10", "-1e+10", "-2147483648", "0"},
        {L"1e-15", "1e-15", "0", "1"},
        {L"\"true\"", "129" + none, "130" + none, "1"},
        {L"\"x\"", "129" + none, "130" + none, "131" + none},
        {L"1e300*1e300", "129" + none, "130" + none, "0"},
        {L"1/0", "133 Divide by zero @3", "133 Divide by zero @3", "133 Divide by zero @3"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Typed<double>(&ExpressionEvaluator::TryEvaluateDouble, row.expression), row.asDouble);
        EXPECT_EQ(Typed<int>(&ExpressionEvaluator::TryEvaluateInt, row.expression), row.asInt);
        EXPECT_EQ(Typed<bool>(&ExpressionEvaluator::TryEvaluateBool, row.expression), row.asBool);
    }
}

TEST(Evaluator, ThrowingForms)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EXPECT_EQ(evaluator.EvaluateDouble(L"1/4"), 0.25);
    EXPECT_EQ(evaluator.EvaluateInt(L"9/2"), 4);
    EXPECT_TRUE(evaluator.EvaluateBool(L"1=1"));
    EXPECT_EQ(evaluator.EvaluateString(L"1&2"), L"12");
    EXPECT_EQ(evaluator.Evaluate(L"1.50").ToString(), L"1.50");
    EXPECT_EQ(ThrownBy([&] { evaluator.Evaluate(L"1+"); }), "exit code 0:505:17");
    EXPECT_EQ(ThrownBy([&] { evaluator.EvaluateDouble(L"\"x\""); }), "exit code 0:505:129");
    EXPECT_EQ(ThrownBy([&] { evaluator.EvaluateString(L"1/0"); }), "exit code 0:505:133");
}

TEST(Evaluator, TheErrorRecordBelongsToTheLastEvaluation)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EEToken result;
    ExitCode code;
    WString message;
    WString marker;
    EXPECT_FALSE(evaluator.TryEvaluate(L"1+2/*3", result));
    EXPECT_TRUE(evaluator.TryGetErrorMessage(code, message, marker));
    EXPECT_EQ(marker, L"    ^");
    EXPECT_EQ(code, ExitCode(0, 505, 20));

    EXPECT_TRUE(evaluator.TryEvaluate(L"1", result));
    EXPECT_FALSE(evaluator.TryGetErrorMessage(code, message, marker));
    EXPECT_FALSE(evaluator.TryGetErrorMessage(code, message, nullptr));

    for (const wchar_t* atTheStart : {L"#", L"."}) {
        EXPECT_FALSE(evaluator.TryEvaluate(atTheStart, result));
        EXPECT_TRUE(evaluator.TryGetErrorMessage(code, message, marker));
        EXPECT_EQ(marker, L"^");
    }
}

TEST(Evaluator, OnlyTheFirstErrorIsRecorded)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.ErrMsg(ExitCode(0, 505, 7), 3, L"first");
    evaluator.ErrMsg(ExitCode(0, 505, 8), 4, L"second");
    EXPECT_EQ(DescribeError(evaluator), "7 first @3");

    ExpressionEvaluator unnamed(nullptr, 0);
    unnamed.ErrMsg(ExitCode(0, 100, 32), 5, L"");
    EXPECT_EQ(DescribeError(unnamed), "0:100:32 0:100:32 @5");
}

TEST(Evaluator, MissingVariableName)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    WString name;
    Outcome(evaluator, "abs(inArgument)");
    EXPECT_TRUE(evaluator.TryGetMissingVariableName(name));
    EXPECT_EQ(name, L"inArgument");
    Outcome(evaluator, "IsNA(tested)");
    EXPECT_FALSE(evaluator.TryGetMissingVariableName(name)) << "an argument that was only tested";
    Outcome(evaluator, "1+%S{No.Such}");
    EXPECT_TRUE(evaluator.TryGetMissingVariableName(name));
    EXPECT_EQ(name, L"%S{No.Such}");
    for (const char* whole : {"%S{zz}", "IF(true,%S{zz},0)"}) {
        Outcome(evaluator, whole);
        EXPECT_TRUE(evaluator.TryGetMissingVariableName(name) && name == L"%S{zz}") << whole;
    }
}

TEST(Evaluator, TextsThatGetTooLongAreNoErrorOfTheTrace)
{
    ExpressionEvaluator evaluator(nullptr, EvaluatorFlags::traceVariables);
    evaluator.SetVariable(L"n", WString(1u << 20, L'n'));
    bool holds = false;
    EXPECT_TRUE(evaluator.TryEvaluateBool(L"1=1" + WString::FromUtf8(Repeat(" and n<>\"\"", 20)), holds) && holds);
    EXPECT_EQ(evaluator.GetVariableTrace().Length(), 15 * ((1u << 20) + 3) - 1);
    evaluator.ClearVariableTrace();
    EXPECT_EQ(Outcome(evaluator, "IF(1=1,pi,n)+0"), "3.14159265358979");
    EXPECT_GT(evaluator.GetVariableTrace().Length(), 1u << 20) << "it collects anew";

    const WString longest = L"1+%C{" + WString((1u << 24) - 6, L'n') + L"}";
    EEToken result;
    EXPECT_FALSE(evaluator.TryEvaluate(longest, result));
    EXPECT_EQ(DescribeError(evaluator), "0:1:12 #Error: 0:1:12 @16777216");
    bool isError = false;
    const WString tested = L"IsErr(%U{" + WString((1u << 24) - 14, L'n') + L"}+1)";
    EXPECT_TRUE(evaluator.TryEvaluateBool(tested, isError) && isError) << "an error value as any other";
}

TEST(Evaluator, VariablesPersistUntilCleared)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.SetVariable(L"n", 2.0);
    evaluator.SetVariable(L"t", L"text");
    evaluator.SetVariable(L"b", true);
    evaluator.SetVariable(L"n", 3.0);
    EXPECT_EQ(Outcome(evaluator, "N & T & B"), "'3textTRUE'");
    evaluator.Clear();
    EXPECT_EQ(Outcome(evaluator, "IsNA(n)"), "TRUE");
    evaluator.SetVariable(L"n", 4.0);
    EXPECT_EQ(Outcome(evaluator, "n+0"), "4");
}

TEST(Evaluator, ALentMapIsOnlyDetached)
{
    EETokenMap map(7);
    map.SetVariable(L"x", 5.0);
    ExpressionEvaluator evaluator(false, Environment(), &map, L"x", 0);
    EXPECT_EQ(Outcome(evaluator, "x*2"), "10");
    EXPECT_EQ(Outcome(evaluator, "y"), "38 Invalid character @1");
    evaluator.SetVariable(L"X", 6.0);
    EXPECT_EQ(map.GetVariable(L"x")->ToString(), L"6");
    evaluator.Clear();
    EXPECT_EQ(Outcome(evaluator, "Defined(x)"), "FALSE");
    EXPECT_EQ(map.GetVariable(L"x")->ToString(), L"6");

    ExpressionEvaluator other(nullptr, 0);
    other.SetVariable(L"x", 1.0);
    other.SetVariableMap(&map);
    EXPECT_EQ(Outcome(other, "x+0"), "6");
    other.SetVariableMap(nullptr);
    other.AddVariables(map);
    EXPECT_EQ(Outcome(other, "x+0"), "6");
}

TEST(Evaluator, SeesWhatIsSetLater)
{
    Environment environment;
    ExpressionEvaluator evaluator(true, environment, nullptr, L"abcdefghijklmnopqrstuvwxyzX", 0);
    EXPECT_EQ(Outcome(evaluator, "X+1"), "48 Missing variable: X @1");
    environment.SetString(L"x", L"4");
    EXPECT_EQ(Outcome(evaluator, "X+1"), "5");
    evaluator.SetVariable(L"X", 7.0);
    EXPECT_EQ(Outcome(evaluator, "initifna(X+1, 0)"), "8");
}

TEST(Evaluator, TraceListsWhatWasReadInOrder)
{
    ExpressionEvaluator evaluator(
        true, Environment(), nullptr, L"abcdefghijklmnopqrstuvwxyz", EvaluatorFlags::traceVariables);
    evaluator.SetVariable(L"a", 1.0);
    Outcome(evaluator, "a + max(a, %C{[No] such}, abs(2)) + pi + %S{none}");
    EXPECT_EQ(evaluator.GetVariableTrace().ToUtf8(),
        "a=1\na=1\nConfig:[No] such=%C{[No] such}\nEnvironment:pi=pi\nStatus:none=%S{none}\n"
        "Function:abs=2");
    Outcome(evaluator, "a");
    EXPECT_TRUE(evaluator.GetVariableTrace().EndsWith(L"\na=1", false)) << "evaluations add to it";
    evaluator.Clear();
    EXPECT_TRUE(evaluator.GetVariableTrace().IsEmpty());

    ExpressionEvaluator silent(nullptr, 0);
    Outcome(silent, "abs(pi)");
    EXPECT_TRUE(silent.GetVariableTrace().IsEmpty());
}

TEST(Evaluator, LeavesNoObjectBehind)
{
    const auto counts = [] {
        std::map<std::string, int> result;
        for (const DebugObjectCount& entry : GetDebugObjectCounts())
            result[WString(entry.name).ToUtf8()] = entry.read();
        return result;
    };
    const auto before = counts();
    EXPECT_EQ(before.count("ExpressionEvaluator_EEToken") + before.count("ExpressionEvaluator_CTokenMap"), 2u);
    WStringArray functions;
    ExpressionEvaluator::GetSupportedFunctions(functions);
    EXPECT_EQ(before.at("ExpressionEvaluator_CExprFn"), static_cast<int>(functions.Count()));
    for (int i = 0; i < 1000; ++i) {
        ExpressionEvaluator evaluator(nullptr, 0);
        evaluator.SetVariable(L"i", static_cast<double>(i));
        for (const char* expression :
            {"1+2*3", "Max(i, 1/0, kaka)", "IF(true, abs(", "\"a\" & i & \"long enough to be stored outside\"", "1 2"})
            Outcome(evaluator, expression);
    }
    EXPECT_EQ(counts(), before);
}
