#include "SelfTest.h"

#include "Commands/TestCommand.h"
#include "ExpressionEvaluator.h"

namespace {
/// An expression with the text of its value, or "number at position: message" of its error.
struct ExpressionCase
{
    const wchar_t* expression;
    const wchar_t* expected;
};

// The variables a, b and c are 10, 20 and 14.
constexpr ExpressionCase expressionCases_lc[] = {
    // operators and their order
    {L"1+2*3", L"7"},
    {L"10+5*2+2/4", L"20.5"},
    {L"2^3^2", L"512"},
    {L"-2^2", L"4"},
    {L"(1+2)*(3-4)", L"-3"},
    {L"0.1+0.2=0.3", L"TRUE"},
    {L"5>10 or 10<15", L"TRUE"},
    {L"true xor 1<=1", L"FALSE"},
    {L"\"000\" & (120 + 3)", L"000123"},
    {L"\"xyz\" = \"XYZ\"", L"TRUE"},
    {L"\"x\" <> 5", L"TRUE"},
    // values and variables
    {L"0x1F+1", L"32"},
    {L"1.50", L"1.50"},
    {L"1/3", L"0.333333333333333"},
    {L"PI", L"3.14159265358979"},
    {L"A*B-c", L"186"},
    // functions of each kind
    {L"Avg( Max(A, b , c), Min( a,b, c ) ) + SUM( MIN(a,b,c), MAX(a,b,c) )", L"45"},
    {L"IF(ISNA(missing),-66,missing*3)", L"-66"},
    {L"IsErr(sqrt(-1))", L"TRUE"},
    {L"int(-2.5)", L"-2"},
    {L"UCase(Mid(\"expression\", 2, 5))", L"PRESS"},
    {L"ListItem(\"a,b,c\", 2)", L"b"},
    {L"Fcvt(PI, 3)", L"3.14"},
    {L"DaysToDate(DateToDays(20240228)+2)", L"20240301"},
    {L"VersionCompare(\"6.0.6\", \"6.0.10\")", L"-1"},
    // errors of each step, with their places
    {L"1+2/*3", L"20 at 5: Expecting operand"},
    {L"(1+2", L"24 at 4: Expected ')'"},
    {L"sqrt(4,2)", L"26 at 7: Too many parameters"},
    {L"\"abc", L"36 at 4: Missing \", unexpected end of string"},
    {L"10/0", L"133 at 4: Divide by zero"},
    {L"10 + kaka", L"48 at 6: Missing variable: kaka"},
    {L"true + 1", L"143 at 1: Boolean is not a number"},
    {L"1 and true", L"6 at 1: Type mismatch"},
    {L"%x{a}", L"41 at 2: Invalid instrument variable type"},
};

/// A command line with its exit code and the lines that it writes, joined by "|".
struct CommandCase
{
    const wchar_t* line;
    const wchar_t* exitCode;
    const wchar_t* output;
};

// One run from top to bottom in one environment.
constexpr CommandCase commandCases_lc[] = {
    {L"Calc 1+2*3", L"0:0:0", L"7"},
    {L"Calc -q 1+2*3", L"0:0:0", L""},
    {L"Calc 10/0", L"1043:505:133", L"Error:|  Divide by zero|  10/0|     ^"},
    {L"Calc", L"1043:0:1", L""},
    {L"Set selfTest.x=2011", L"0:0:0", L""},
    {L"If selfTest.x * 3 < 6000 Then Set selfTest.x=1 Else Set -v selfTest.x=selfTest.x*3", L"0:0:0",
        L"selfTest.x=6033"},
    {L"If selfTest.x=1", L"1042:0:3", L""},
    {L"Assert selfTest.x=6033", L"0:0:0", L""},
    {L"Assert selfTest.x<0", L"9015:0:13", L"Assertion \"selfTest.x<0\" failed!|  Environment:selfTest.x=6033"},
    {L"While -c3 true Do Set -i selfTest.y=0; Set selfTest.y=selfTest.y+i", L"0:0:0", L""},
    {L"While selfTest.y>0 Do Set -v selfTest.y=selfTest.y-4", L"0:0:0", L"selfTest.y=2|selfTest.y=-2"},
    {L"While -er9015:* i<=1 Do Assert 1=2; Calc EC_While", L"0:0:0", L"Assertion \"1=2\" failed!|9015:0:13"},
    {L"Set -z selfTest.*", L"0:0:0", L"selfTest.x|selfTest.y|Deleted 2 variable(s)"},
};

WString Evaluate(ExpressionEvaluator& evaluator, const WString& expression)
{
    WString text;
    if (evaluator.TryEvaluateString(expression, text))
        return text;
    ExitCode code;
    int position = 0;
    evaluator.TryGetErrorMessage(code, text, &position);
    return WString::Format(L"%u at %d: %s", code.GetNumber(), position, text);
}

void TestExpressions(TestCommand& test)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.SetVariable(L"a", 10.0);
    evaluator.SetVariable(L"b", 20.0);
    evaluator.SetVariable(L"c", 14.0);
    for (const ExpressionCase& row : expressionCases_lc)
        Assertion::AreEqual(test, row.expected, Evaluate(evaluator, row.expression), row.expression);
}

void TestCommands(TestCommand& test)
{
    for (const CommandCase& row : commandCases_lc) {
        WStringArray lines;
        const ExitCode code = test.Run(row.line, lines);
        WString output;
        for (const WString& line : lines)
            output.AppendWithSeparator(line, L"|");
        Assertion::AreEqual(test, row.exitCode, code.ToString(), row.line);
        Assertion::AreEqual(test, row.output, output, row.line);
    }
}

void TestHelp(TestCommand& test)
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedOperators(names);
    Assertion::AreEqual(test, 15, static_cast<double>(names.Count()), L"Number of operators");
    ExpressionEvaluator::GetSupportedFunctions(names);
    Assertion::AreEqual(test, 89, static_cast<double>(names.Count()), L"Number of functions");
}
} // namespace

void RunExpressionEvaluatorTests(TestCommand& test)
{
    const int tokenCount = GetDebugObjectCountExpressionEvaluator_EEToken();
    TestExpressions(test);
    TestCommands(test);
    TestHelp(test);
    Assertion::AreEqual(test, tokenCount, GetDebugObjectCountExpressionEvaluator_EEToken(), L"Tokens left behind");
}
