#include "Support/Expressions.h"

#include "ExpressionEvaluatorException.h"
#include "Services/ObjectCounters.h"
#include "Services/System.h"

#include <map>

TEST(Evaluator, TypedForms)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    double number = 0;
    EXPECT_TRUE(evaluator.TryEvaluateDouble(L"3>2", number));
    EXPECT_EQ(number, 1);
    EXPECT_TRUE(evaluator.TryEvaluateDouble(L"\"1F\"", number));
    EXPECT_EQ(number, 31);

    int integer = 0;
    for (const auto& [text, expected] :
        {std::pair{L"7.9", 7}, {L"-7.9", -7}, {L"1e10", 2147483647}, {L"-1e10", -2147483647 - 1}}) {
        EXPECT_TRUE(evaluator.TryEvaluateInt(text, integer));
        EXPECT_EQ(integer, expected);
    }

    bool boolean = false;
    for (const auto& [text, expected] :
        {std::pair{L"1<2", true}, {L"\"true\"", true}, {L"0", true}, {L"1", false}, {L"1e-15", true}}) {
        EXPECT_TRUE(evaluator.TryEvaluateBool(text, boolean));
        EXPECT_EQ(boolean, expected) << WString(text).ToUtf8();
    }

    WString string;
    EXPECT_TRUE(evaluator.TryEvaluateString(L"1/3", string));
    EXPECT_EQ(string, L"0.333333333333333");
    EXPECT_TRUE(evaluator.TryEvaluateString(L"1<2", string));
    EXPECT_EQ(string, L"TRUE");
}

TEST(Evaluator, TypedFormsThatDoNotConvert)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    double number = 0;
    int integer = 0;
    bool boolean = false;
    EXPECT_FALSE(evaluator.TryEvaluateDouble(L"\"x\"", number));
    EXPECT_EQ(DescribeError(evaluator), "129 Expression cannot be evaluated as a number @0");
    EXPECT_FALSE(evaluator.TryEvaluateInt(L"\"x\"", integer));
    EXPECT_EQ(DescribeError(evaluator), "130 Expression cannot be evaluated as a number @0");
    EXPECT_FALSE(evaluator.TryEvaluateBool(L"\"x\"", boolean));
    EXPECT_EQ(DescribeError(evaluator), "131 Expression cannot be evaluated as a number @0");
    EXPECT_FALSE(evaluator.TryEvaluateDouble(L"1e300*1e300", number));
    EXPECT_EQ(DescribeError(evaluator), "129 Expression cannot be evaluated as a number @0");
    EXPECT_FALSE(evaluator.TryEvaluateBool(L"1/0", boolean));
    EXPECT_EQ(DescribeError(evaluator), "133 Divide by zero @3");
}

TEST(Evaluator, ThrowingForms)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EXPECT_EQ(evaluator.EvaluateDouble(L"1/4"), 0.25);
    EXPECT_EQ(evaluator.EvaluateInt(L"9/2"), 4);
    EXPECT_TRUE(evaluator.EvaluateBool(L"1=1"));
    EXPECT_EQ(evaluator.EvaluateString(L"1&2"), L"12");
    EXPECT_EQ(evaluator.Evaluate(L"1.50").ToString(), L"1.50");
    const auto thrown = [&](auto evaluate) {
        try {
            evaluate();
            return std::string("nothing");
        } catch (const ExitCode& code) {
            return code.ToString().ToUtf8();
        }
    };
    EXPECT_EQ(thrown([&] { evaluator.Evaluate(L"1+"); }), "0:505:17");
    EXPECT_EQ(thrown([&] { evaluator.EvaluateDouble(L"\"x\""); }), "0:505:129");
    EXPECT_EQ(thrown([&] { evaluator.EvaluateString(L"1/0"); }), "0:505:133");
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

TEST(Evaluator, ReadsTheEnvironmentItWasGiven)
{
    Environment environment;
    environment.SetString(L"SII", L"2011");
    environment.SetString(L"flag", L"True");
    environment.SetString(L"apples", L"12 apples");
    environment.SetString(L"hex", L"0x10");
    ExpressionEvaluator evaluator(true, environment, nullptr, L"abcdefghijklmnopqrstuvwxyzSIX", 0);
    EXPECT_EQ(Outcome(evaluator, "%E{ sii } * 3"), "6033");
    EXPECT_EQ(Outcome(evaluator, "SII+1"), "2012");
    EXPECT_EQ(Outcome(evaluator, "flag"), "TRUE");
    EXPECT_EQ(Outcome(evaluator, "apples"), "'12 apples'");
    EXPECT_EQ(Outcome(evaluator, "hex"), "'0x10'");
    EXPECT_EQ(Outcome(evaluator, "abs(SII)"), "2011") << "function arguments see it too";
    EXPECT_EQ(Outcome(evaluator, "%E{X}+1"), "48 Missing variable: %E{X} @1");
    EXPECT_EQ(Outcome(evaluator, "X+1"), "48 Missing variable: X @1");
    environment.SetString(L"X", L"4");
    EXPECT_EQ(Outcome(evaluator, "X+1"), "5");
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

TEST(Evaluator, AVariableSetLaterIsSeen)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EXPECT_EQ(Outcome(evaluator, "InitIfNa(test+2, 0)"), "0");
    evaluator.SetVariable(L"test", 5.0);
    EXPECT_EQ(Outcome(evaluator, "InitIfNa(test+2, 0)"), "7");
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
    EXPECT_EQ(before.at("ExpressionEvaluator_CExprFn"), 89);
    for (int i = 0; i < 1000; ++i) {
        ExpressionEvaluator evaluator(nullptr, 0);
        evaluator.SetVariable(L"i", static_cast<double>(i));
        for (const char* expression :
            {"1+2*3", "Max(i, 1/0, kaka)", "IF(true, abs(", "\"a\" & i & \"long enough to be stored outside\"", "1 2"})
            Outcome(evaluator, expression);
    }
    EXPECT_EQ(counts(), before);
}

TEST(Evaluator, ReadsTheInstrumentByType)
{
    const struct
    {
        const wchar_t* name;
        StatusType type;
        const wchar_t* text;
        const char* outcome;
    } rows[] = {
        {L"Engine.Bool", ST_Bool, L"true", "TRUE"},
        {L"Engine.Double", ST_Double, L"2.5", "2.5"},
        {L"Engine.String", ST_String, L"12", "'12'"},
        {L"Engine.ExitCode", ST_ExitCode, L"1:2:3", "'1:2:3'"},
        {L"Engine.Int", ST_Int, L"-12", "-12"},
        {L"Engine.UInt", ST_UInt, L"4294967295", "4294967295"},
        {L"Engine.UInt64", ST_UInt64, L"7", "7"},
        {L"Engine.TooLarge", ST_UInt64, L"4294967296", "40 Cannot access status value (ST_*=2052) @4"},
        {L"Engine.Formatted", ST_Formatted, L"text", "40 Cannot access status value (ST_*=5) @4"},
    };
    for (const auto& row : rows) {
        ASSERT_TRUE(System::status.TryAdd(row.name, row.type, row.text));
        EXPECT_EQ(Outcome("%s{ " + WString(row.name).ToUtf8() + " }"), row.outcome);
    }

    for (const auto& [text, outcome] :
        {std::pair{L"12.50", "12.5"}, {L"TRUE", "TRUE"}, {L"12 apples", "'12 apples'"}, {L"0x10", "'0x10'"}}) {
        System::config.SetString(L"Engine", L"A Key", text);
        EXPECT_EQ(Outcome("%C{[ Engine ] A Key}"), outcome);
        EXPECT_EQ(Outcome("%c{engine a key}"), outcome);
    }
}
