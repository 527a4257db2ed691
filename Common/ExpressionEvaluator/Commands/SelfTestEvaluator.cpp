// The class ExpressionEvaluator as other plug-ins use it, and the evaluation of token stacks that no expression gives.

#include "EETokenMap.h"
#include "ExpressionEvaluatorFunctions.h"
#include "SelfTestParts.h"

#include <iterator>

namespace {
using SelfTest::Outcome;
using SelfTest::ThrownBy;

/// An expression with its value as a number, as an integer and as a boolean, or the error.
struct TypedRow
{
    const char* expression;
    const char* outcomes[3];
};

constexpr char noDouble[] = "129 Expression cannot be evaluated as a number @0";
constexpr char noInt[] = "130 Expression cannot be evaluated as a number @0";
constexpr char noBool[] = "131 Expression cannot be evaluated as a number @0";

constexpr TypedRow typed_lc[] = {
    {"3>2", {"1", "1", "1"}},
    {"\"1F\"", {"31", "31", noBool}},
    {"-7.9", {"-7.9", "-7", "0"}},
    {"1e10", {"1e+10", "2147483647", "0"}},
    {"-1e10", {"-1e+10", "-2147483648", "0"}},
    {"2147483646.5", {"2.14748e+09", "2147483646", "0"}},
    {"0", {"0", "0", "1"}},
    {"2.22e-15", {"2.22e-15", "0", "1"}},
    {"2.2204460492503131e-15", {"2.22045e-15", "0", "0"}},
    {"2.23e-15", {"2.23e-15", "0", "0"}},
    {"\"true\"", {noDouble, noInt, "1"}},
    {"\"x\"", {noDouble, noInt, noBool}},
    {"1/0", {"133 Divide by zero @3", "133 Divide by zero @3", "133 Divide by zero @3"}},
};

void TestTypedForms(TestCommand& test)
{
    for (const TypedRow& row : typed_lc) {
        const WString expression = WString::FromUtf8(row.expression);
        ExpressionEvaluator evaluator(nullptr, 0);
        double number = 0;
        int integer = 0;
        bool truth = false;
        WString outcomes[3];
        outcomes[0] = evaluator.TryEvaluateDouble(expression, number) ? WString::Format(L"%g", number)
                                                                      : SelfTest::DescribeError(evaluator);
        outcomes[1] = evaluator.TryEvaluateInt(expression, integer) ? WString::Format(L"%d", integer)
                                                                    : SelfTest::DescribeError(evaluator);
        outcomes[2] = evaluator.TryEvaluateBool(expression, truth) ? WString::Format(L"%d", truth)
                                                                   : SelfTest::DescribeError(evaluator);
        for (std::size_t form = 0; form < std::size(outcomes); ++form)
            Assertion::AreEqual(test, WString::FromUtf8(row.outcomes[form]), outcomes[form], expression);
    }
    ExpressionEvaluator evaluator(nullptr, 0);
    Assertion::AreEqual(test, 0.25, evaluator.EvaluateDouble(L"1/4"), L"EvaluateDouble");
    Assertion::AreEqual(test, 4, evaluator.EvaluateInt(L"9/2"), L"EvaluateInt");
    Assertion::IsTrue(test, evaluator.EvaluateBool(L"1=1"), L"EvaluateBool");
    Assertion::AreEqual(test, L"12", evaluator.EvaluateString(L"1&2"), L"EvaluateString");
    Assertion::AreEqual(test, L"1.50", evaluator.Evaluate(L"1.50").ToString(), L"Evaluate");
    Assertion::AreEqual(test, L"0:505:17", ThrownBy([&] { evaluator.Evaluate(L"1+"); }), L"A throwing form");
    Assertion::AreEqual(test, L"0:505:129", ThrownBy([&] { evaluator.EvaluateDouble(L"\"x\""); }), L"A throwing form");
}

/// Message and marker of the last evaluation, or nothing.
WString Marked(const ExpressionEvaluator& evaluator)
{
    ExitCode code;
    WString message;
    WString marker;
    return evaluator.TryGetErrorMessage(code, message, marker) ? code.ToString() + L" " + message + L"|" + marker
                                                               : WString();
}

void TestErrorRecord(TestCommand& test)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    const auto marked = [&](const wchar_t* expression) {
        Outcome(evaluator, expression);
        return Marked(evaluator);
    };
    Assertion::AreEqual(test, L"0:505:20 Expecting operand|    ^", marked(L"1+2/*3"), L"A marker");
    Assertion::AreEqual(test, L"0:505:38 Invalid character|^", marked(L"#"), L"A marker at the first place");
    Assertion::AreEqual(test, L"0:505:37 Invalid number|^", marked(L"."), L"A marker before the first place");
    Assertion::AreEqual(test, L"", marked(L"1"), L"No error");
    Assertion::AreEqual(test, L"an error without a message", SelfTest::DescribeError(evaluator), L"No error");

    evaluator.ErrMsg(ExitCode(0, 505, 7), 3, L"first");
    evaluator.ErrMsg(ExitCode(0, 505, 8), 4, L"second");
    Assertion::AreEqual(test, L"0:505:7 first|  ^", Marked(evaluator), L"Only the first error counts");
    ExpressionEvaluator unnamed(nullptr, 0);
    unnamed.ErrMsg(ExitCode(0, 100, 32), 2, L"");
    Assertion::AreEqual(test,
        L"0:100:32 0:100:32|"
        L" ^",
        Marked(unnamed), L"A code without a message");

    WString name;
    Outcome(evaluator, L"abs(inArgument)");
    Assertion::IsTrue(test, evaluator.TryGetMissingVariableName(name) && name == L"inArgument", L"Missing name");
    Outcome(evaluator, L"1");
    Assertion::IsTrue(test, !evaluator.TryGetMissingVariableName(name), L"No missing name");
}

void TestVariables(TestCommand& test)
{
    const auto check = [&](ExpressionEvaluator& evaluator, const wchar_t* expression, const wchar_t* outcome) {
        Assertion::AreEqual(test, outcome, Outcome(evaluator, expression), expression);
    };
    EETokenMap map(7);
    map.SetVariable(L"x", 5.0);
    EEToken token;
    token.SetValue(L"token");
    {
        ExpressionEvaluator own(nullptr, 0);
        own.SetVariable(L"n", 2.0);
        own.SetVariable(L"t", L"text");
        own.SetVariable(L"b", true);
        own.SetVariable(L"k", token);
        own.SetVariable(L"PI", 3.0);
        check(own, L"N & T & B & K & pi", L"'2textTRUEtoken3'");
        own.Clear();
        check(own, L"IsNA(n) and IsNA(t)", L"TRUE");
        own.SetVariable(L"n", 4.0);
        own.AddVariables(map);
        check(own, L"n+x", L"9");
        own.SetVariableMap(&map);
        check(own, L"IsNA(n) and x=5", L"TRUE");
    }
    ExpressionEvaluator lent(false, Environment(), &map, L"x", 0);
    check(lent, L"x*2", L"10");
    check(lent, L"y", L"38 Invalid character @1");
    lent.SetVariable(L"X", 6.0);
    Assertion::AreEqual(test, L"6", map.GetVariable(L"x")->ToString(), L"A variable set in a lent map");
    lent.Clear();
    check(lent, L"Defined(x)", L"FALSE");
    Assertion::AreEqual(test, L"6", map.GetVariable(L"x")->ToString(), L"A lent map is not cleared");
}

void TestFlagsAndNames(TestCommand& test)
{
    const auto check = [&](ExpressionEvaluator& evaluator, const wchar_t* expression, const wchar_t* outcome) {
        Assertion::AreEqual(test, outcome, Outcome(evaluator, expression), expression);
    };
    ExpressionEvaluator withoutE(nullptr, 1);
    check(withoutE, L"e+1", L"48 Missing variable: e @1");
    check(withoutE, L"abs(E)+PI", L"48 Missing variable: E @5");
    ExpressionEvaluator names(nullptr, 0);
    names.SetVariable(L"\u00E4&", 5.0);
    names.SetValidChars(L"\u00E4&+");
    check(names, L"\u00C4&+1", L"6");
    check(names, L"a", L"38 Invalid character @1");
    names.SetValidChars(L"( )*+,-/<=>a");
    check(names, L"1+aA", L"48 Missing variable: aA @3");
    check(names, L"(1-2)*3/4<=5=(1>=2)", L"FALSE");
    names.Clear();
    check(names, L"IsNA(b_9.z)", L"TRUE");

    Environment environment;
    environment.SetString(L"v", L"7");
    ExpressionEvaluator traced(true, environment, nullptr, L"abcdefghijklmnopqrstuvwxyz", 0);
    Outcome(traced, L"v");
    Assertion::AreEqual(test, L"", traced.GetVariableTrace(), L"No trace");
    traced.AddFlags(2);
    traced.SetVariable(L"a", 1.0);
    Outcome(traced, L"a + max(v, %C{[No] such}, abs(2)) + pi + %S{none} + %U{none} + %E{v}");
    Assertion::AreEqual(test,
        L"a=1\nEnvironment:v=7\nConfig:[No] such=%C{[No] such}\nEnvironment:pi=pi\nStatus:none=%S{none}\n"
        L"Usage:none=%U{none}\nEnvironment:v=7\nFunction:abs=2",
        traced.GetVariableTrace(), L"Trace");
    traced.ClearVariableTrace();
    Outcome(traced, L"max(a,v)");
    Assertion::AreEqual(test, L"a=1\nEnvironment:v=7\nFunction:max=7", traced.GetVariableTrace(), L"Next trace");
    traced.Clear();
    Assertion::AreEqual(test, L"", traced.GetVariableTrace(), L"Cleared trace");
}

void TestPostfix(TestCommand& test)
{
    const auto operand = [](double value, int position) {
        EEToken token;
        token.SetValue(value);
        token.SetPosition(position);
        return token;
    };
    const auto check = [&](std::initializer_list<EEToken> tokens, const wchar_t* outcome) {
        EETokenStack postfix;
        for (const EEToken& token : tokens)
            postfix.Put(token);
        const WString input = postfix.ToString(true);
        ExpressionEvaluator evaluator(nullptr, 0);
        EEToken result;
        const bool succeeded = evaluator.EvaluatePostfixExpr(result, postfix);
        Assertion::AreEqual(
            test, outcome, succeeded ? SelfTest::DescribeValue(result) : SelfTest::DescribeError(evaluator), input);
    };
    const EEToken one = operand(1.0, 3);
    const EEToken two = operand(2.0, 5);
    const EEToken call(TT_PRMLIST, L'|', 4);
    EEToken function(TT_FUNCOP, L"max");
    function.SetPosition(7);
    check({}, L"9 Stack empty @0");
    check({one, EEToken(TT_BINARYOP, L'+', 2)}, L"9 Stack empty @0");
    check({one, two}, L"126 Unexpected token encountered @3");
    check({one, EEToken(TT_PRMSEP, L',', 0)}, L"127 Unexpected end of sub expression @0");
    check({one, function}, L"127 Unexpected end of sub expression @0");
    check({one, EEToken(TT_BINARYOP, L'$', 2)}, L"10 Invalid character @2");
    check({one, EEToken(TT_NONE, L'$', 2)}, L"1");
    check({one, EEToken(TT_BINARYOP, L"<<")}, L"11 Invalid binary operator @0");
    check({one, EEToken(TT_UNARYOP, L"++")}, L"12 Invalid function @0");
    check({one, EEToken(TT_END, L"")}, L"1");
    check({call, one}, L"14 Internal Error, EvaluatePostfixSubExpr expected TT_FUNCOP @4");
    check({call, one, two, function}, L"126 Unexpected token encountered @3");
    check({call, one, EEToken(TT_PRMSEP, L',', 0), two, function}, L"2");

    wchar_t noReference[] = L"a";
    wchar_t* cursor = noReference;
    EEToken token;
    Assertion::IsTrue(test,
        !ExpressionEvaluator(nullptr, 0).TryGetSystemVariable(token, &cursor) && cursor == noReference,
        L"Text without a reference");

    const auto convert = [](const wchar_t* expression) {
        ExpressionEvaluator evaluator(nullptr, 0);
        EETokenStack postfix;
        const bool converted = evaluator.Infix2Postfix(expression, postfix);
        return converted ? postfix.ToString(true) : SelfTest::DescribeError(evaluator);
    };
    Assertion::AreEqual(test, L"vn1 | vn2 , vst vn3 b& max b+ ", convert(L"1+Max(2,\"t\"&3)"), L"Postfix of a call");
    Assertion::AreEqual(test, L"vn2 u\u00B1 vn2 b^ vn1 b- ", convert(L"-2^2-1"), L"Postfix of operators");
    Assertion::AreEqual(test, L"24 Expected ')' @2", convert(L"(1"), L"Postfix of a failure");
}

void TestFunctionTable(TestCommand& test)
{
    EETokenStack arguments;
    EEToken argument;
    argument.SetValue(4.0);
    for (const int position : {5, 7}) {
        argument.SetPosition(position);
        arguments.Put(argument);
    }
    EEToken result;
    result.SetPosition(3);
    const auto call = [&](const wchar_t* name) {
        return ThrownBy([&] { fnTable_gb.Evaluate(result, name, arguments, nullptr); });
    };
    Assertion::AreEqual(test, L"116 sqrt requires 1 parameter @7", call(L"SQRT"), L"Two arguments for sqrt");
    Assertion::AreEqual(test, L"200 Unknown function noSuch @0", call(L"noSuch"), L"No such function");
    const int count = GetDebugObjectCountExpressionEvaluator_CExprFn();
    EEFunction bare(L"bare", 1);
    Assertion::AreEqual(test, count + 1, GetDebugObjectCountExpressionEvaluator_CExprFn(), L"Functions alive");
    Assertion::AreEqual(test, L"144 Incorrect function Evaluate overload function is invoked @3",
        ThrownBy([&] { bare.Evaluate(result, arguments, nullptr); }), L"A function without a body");
    int parameters = 0;
    Assertion::IsTrue(
        test, fnTable_gb.IsFunction(L"FmtEng", &parameters) && parameters == 3, L"FmtEng takes three arguments");
    Assertion::IsTrue(test, !fnTable_gb.IsFunction(L"bare", &parameters), L"\"bare\" is no function");
    WStringArray names;
    fnTable_gb.GetSupportedFunctions(names);
    for (const WString& name : names)
        Assertion::IsTrue(test,
            fnTable_gb.IsFunction(name.ToCString(), &parameters) && parameters >= -1 && parameters != 0,
            name + L" has an impossible number of parameters");
}
} // namespace

void SelfTest::TestEvaluator(TestCommand& test)
{
    TestTypedForms(test);
    TestErrorRecord(test);
    TestVariables(test);
    TestFlagsAndNames(test);
    TestPostfix(test);
    TestFunctionTable(test);
}
