// Uses what the evaluator's headers offer to other plug-ins, each operation once: one that is no longer exported fails
// the link of this plug-in. What the operations do in detail is tested elsewhere.

#include "AssertCommand.h"
#include "Calc.h"
#include "Commands/TestCommand.h"
#include "DllRegistryUtils.h"
#include "EEMissingVariableException.h"
#include "EETokenMap.h"
#include "EvaluatorLog.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorFunctions.h"
#include "If.h"
#include "SetCommand.h"
#include "While.h"

#include <algorithm>

namespace {
void Check(TestCommand& test, const wchar_t* what, std::initializer_list<bool> conditions)
{
    for (int number = 1; const bool condition : conditions)
        Assertion::IsTrue(test, condition, WString::Format(L"%s %d", what, number++));
}

bool Has(const WStringArray& names, const WString& name)
{
    return std::ranges::find(names, name) != names.end();
}

/// What `action` throws, as its own class sees it: "48 Missing variable: x @3" or the text of an exit code.
template <typename Action>
WString ThrownBy(Action&& action)
{
    try {
        action();
    } catch (const EEMissingVariableException& exception) {
        return L"missing " + exception.GetVariableName();
    } catch (const ExpressionEvaluatorException& exception) {
        return WString::Format(L"%u %s @%d", exception.GetCode(), exception.GetMessage(), exception.GetPosition());
    } catch (const ExitCode& code) {
        return code.ToString();
    }
    return L"nothing";
}

void UseTokens(TestCommand& test)
{
    EEToken token(TT_UNARYOP, L"not");
    token.SetToken(TT_BINARYOP, L"^");
    Check(test, L"operator", {token.GetPriority() == 5, token.IsRightAssoc()});
    token.SetToken(TT_FUNCOP, L'f');
    token.SetType(TT_OPERAND);
    double number = 0;
    bool truth = false;
    WString text;
    token.SetValue(2.5);
    Check(test, L"number",
        {token.TryGetValue(&number, nullptr), token.TryCast(number), token.GetNumber() == token.ToNumber(),
            token.GetInteger(0, 3) == 2, EEToken::IsNumberValid(EEToken::ValidNumber(number))});
    token.SetValue(true);
    Check(test, L"boolean", {token.TryGetValue(&truth), token.TryCast(truth), token.GetBool()});
    token.SetValue(WString(L"a"));
    token.SetValue(L"abc");
    Check(test, L"text", {token.TryGetValue(text), text == token.GetWString(false), text == token.GetString(false)});
    Assertion::AreEqual(test, L"abc", token.ToString(), L"text");
    Assertion::IsTrue(test, token.GetDumpString().IndexOf(L"abc") >= 0, L"dump");

    ExitCode code;
    int position = 0;
    token.SetTypeErr();
    token.SetException(7, L"seven");
    token.SetException(ExpressionEvaluatorException(8, L"eight", 3));
    Check(test, L"error", {token.TryGetErrorMessage(code, text, position), position == 3, !token.IsNa()});
    token.ClearError();
    token.SetMissingVariable(L"x");
    Assertion::AreEqual(test, L"missing x", ThrownBy([&] { token.RethrowError(); }), L"missing variable");
    token.SetNA();
    Assertion::IsTrue(test, token.IsNa(), L"NA");
}

void UseStackAndMap(TestCommand& test)
{
    EEToken token;
    token.SetType(TT_OPERAND);
    token.SetValue(true);
    EETokenStack stack;
    stack.Push(token);
    stack.Push(EEToken(token));
    stack.Put(token);
    stack.Put(EEToken(token));
    EETokenStack other(&stack);
    stack.Drop(3);
    Check(test, L"stack", {stack.Peek().GetBool(), stack.GetTail().GetBool(), stack.Pop().GetBool()});
    Assertion::AreEqual(test, L"9 ", ThrownBy([&] { stack.PopNumber(); }).Left(2), L"empty stack");
    Assertion::IsTrue(test, other.ToString(false).Length() < other.GetDumpString().Length(), L"dumps");

    EETokenMap map(3);
    EETokenMap more(3);
    WString text;
    map.SetVariable(L"a", token);
    map.SetVariable(L"b", L"text");
    more.SetVariable(L"c", 1.0);
    more.SetVariable(L"d", false);
    map.AddVariables(more);
    Check(test, L"map", {map.GetVariable(L"A")->GetBool(), map.GetVariable(L"c", text, nullptr), text == L"1"});
    const EETokenMap* const asIs = &map; // its class is known here as there
    Check(test, L"counters",
        {typeid(*asIs) == typeid(EETokenMap), GetDebugObjectCountExpressionEvaluator_EEToken() > 5,
            GetDebugObjectCountExpressionEvaluator_CTokenMap() > 1});
}

void UseEvaluator(TestCommand& test)
{
    EETokenMap map(3);
    EEToken value;
    double number = 0;
    int integer = 0;
    bool truth = false;
    WString text;
    ExpressionEvaluator evaluator(false, test.GetEnvironment(), nullptr, L"abcdef", EvaluatorFlags::traceVariables);
    evaluator.SetValidChars(L"abc");
    evaluator.SetVariable(L"a", 1.0);
    evaluator.SetVariable(L"b", true);
    evaluator.SetVariable(L"c", WString(L"2"));
    evaluator.SetVariable(L"cc", *map.GetVariable(L"none"));
    evaluator.AddVariables(map);
    Check(test, L"evaluation",
        {evaluator.TryEvaluate(L"a", value), evaluator.TryEvaluateDouble(L"a", number),
            evaluator.TryEvaluateInt(L"a", integer), evaluator.TryEvaluateBool(L"b", truth),
            evaluator.TryEvaluateString(L"c", text), evaluator.Evaluate(L"b").GetBool(),
            evaluator.EvaluateDouble(L"a+c") == 3, evaluator.EvaluateInt(L"a+c") == 3, evaluator.EvaluateBool(L"b"),
            evaluator.EvaluateString(L"c&c") == L"22", GetRandomNumber() < 1});
    evaluator.LogVariable(L"", L"mine", value);
    Assertion::IsTrue(test, evaluator.GetVariableTrace().IndexOf(L"mine=1") >= 0, L"trace");
    Assertion::AreEqual(test, L"0:505:48", ThrownBy([&] { evaluator.Evaluate(L"abc"); }), L"thrown");
    evaluator.SetVariableMap(nullptr);
    evaluator.Clear();

    ExitCode code;
    WString message;
    int position = 0;
    evaluator.TryEvaluate(L"1+kaka", value);
    Check(test, L"failure",
        {evaluator.TryGetErrorMessage(code, text, &position), position == 3, evaluator.TryGetMissingVariableName(text),
            evaluator.TryGetErrorMessage(code, message, text), text == L"  ^"});
    evaluator.ErrMsg(code, 1, L"first");
    evaluator.ErrMsg(1, L"", L"second");
    evaluator.ErrMsg(ExpressionEvaluatorException(Errors::DivideByZero, 1));
    Assertion::IsTrue(test, !evaluator.Fail(Errors::DivideByZero, L""), L"Fail");

    WStringArray names;
    ArrayPipe help;
    ExpressionEvaluator::GetSupportedOperators(names);
    ExpressionEvaluator::GetSupportedFunctions(names);
    ExpressionEvaluator::DisplaySupportedOperatorsAndFunctionsHelpText(help, true, L"", L"");
    Assertion::IsTrue(test, Has(names, L"Second.Twice") && !help.lines.IsEmpty() && !eeLog_gb.IsEnabled(), L"help");
}

void UseSteps(TestCommand& test)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EETokenStack postfix;
    EEToken value;
    Check(test, L"steps",
        {evaluator.Infix2Postfix(L"1+2", postfix), evaluator.EvaluatePostfixExpr(value, postfix),
            value.GetNumber() == 3});
    wchar_t expression[] = L"4,5)";
    wchar_t* cursor = expression;
    int terminator = TT_NONE;
    Check(test, L"step",
        {evaluator.InfixSubExpr2Postfix(cursor, cursor, &terminator, postfix), terminator == TT_PRMSEP,
            evaluator.EvaluatePostfixSubExpr(value, postfix, &terminator), terminator == TT_END,
            evaluator.OnErrorCleanupPostfixStack(postfix, &terminator), evaluator.GetToken(value, &cursor)});
    EEToken call(TT_FUNCOP, L"abs");
    call.SetNoPrm(1);
    Assertion::IsTrue(test,
        evaluator.InfixFunctionToPostfix(expression, call, cursor = expression + 2, &terminator, postfix), L"call");
}

void UseReferences(TestCommand& test)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EEToken token;
    WString name;
    wchar_t reference[] = L"%E{x}{name}";
    wchar_t* cursor = reference;
    wchar_t* braces = reference + 5;
    const wchar_t* const at = reference;
    const WString none = L"[no]such";
    Check(test, L"references",
        {evaluator.TryGetSystemVariableName(&braces, name), name == L"name",
            evaluator.TryGetStatusValue(token, none, at), evaluator.TryGetStatusValueNoLog(token, none, at),
            evaluator.TryGetConfigValue(token, none, at), evaluator.TryGetConfigValueNoLog(token, none, at),
            evaluator.TryGetUsageLogValue(token, none, at), evaluator.TryGetUsageLogValueNoLog(token, none, at),
            evaluator.TryGetEnvironmentVariableValue(token, none, true, at),
            evaluator.TryGetEnvironmentVariableValueNoLog(token, none, true, at),
            !evaluator.TryGetEnvironmentVariableValue(token, none), !evaluator.TryGetSystemVariable(token, &cursor)});
}

void UseFunctionsAndRegistry(TestCommand& test)
{
    EEToken result;
    EETokenStack arguments;
    EEFunction function(L"bare", 0);
    EEMathFunctionPointer math(L"math", nullptr);
    int count = 0;
    WStringArray names;
    fnTable_gb.GetSupportedFunctions(names);
    Check(test, L"functions",
        {fnTable_gb.IsFunction(L"ABS", &count), count == 1, Has(names, L"Second.Twice"),
            dynamic_cast<EEMathFunctionPointer*>(fnTable_gb.FindOrNull(L"abs")) != nullptr,
            GetDebugObjectCountExpressionEvaluator_CExprFn() > static_cast<int>(names.Count())});
    const int functionCount = GetDebugObjectCountExpressionEvaluator_CExprFn();
    Check(test, L"refused functions",
        {!fnTable_gb.AddFn(nullptr), !fnTable_gb.AddFn(new EEFunction(L"ABS", 1)),
            GetDebugObjectCountExpressionEvaluator_CExprFn() == functionCount});
    Assertion::AreEqual(test, L"200 Unknown function no @0",
        ThrownBy([&] { fnTable_gb.Evaluate(result, L"no", arguments, nullptr); }), L"call");
    Assertion::AreEqual(test, L"144 ", ThrownBy([&] { function.Evaluate(result, arguments); }).Left(4), L"call");
    Assertion::AreEqual(test, L"0:1:22",
        ThrownBy([&] { static_cast<EEFunction&>(math).Evaluate(result, arguments, nullptr); }), L"call");
    Assertion::AreEqual(test, L"1:2:3", ThrownBy([] { CheckAndThrowExitCode(ExitCode(1, 2, 3)); }), L"exit code");
    Assertion::AreEqual(test, L"4 token x @5", ThrownBy([] {
        const EEToken token(TT_OPERAND, L"x");
        throw ExpressionEvaluatorException(4, L"token %t", &token, 5);
    }),
        L"text of a token");
    Assertion::AreEqual(
        test, L"missing y", ThrownBy([] { throw EEMissingVariableException(L"y", 1); }), L"thrown here");
    Assertion::AreEqual(
        test, L"y", PruneVariableName(GenerateMissingVariableMessage(L"y")), L"message of a missing variable");

    for (CommandBase* (*const create)() :
        {CreateCommandAssertCommand, CreateCommandCalc, CreateCommandIf, CreateCommandSetCommand, CreateCommandWhile})
        delete create();
    AutomaticTestEntry entry;
    Check(test, L"registry",
        {DllRegistrySelectDll("no such file") == 0, !DllRegistryGetNextCommand(0),
            !DllRegistryTryGetNextAutomaticTest(0, entry),
            GetDllName(reinterpret_cast<void*>(UseSteps)) == GetDllFileName("a/libSecondPlugin.so")});
    DllRegistrySelectDllForTests("libSecondPlugin.so");
    Assertion::IsTrue(test, DllRegistryTryGetNextAutomaticTest(0, entry), L"registry");
}

void UseExports(TestCommand& test)
{
    for (const auto use : {UseTokens, UseStackAndMap, UseEvaluator, UseSteps, UseReferences, UseFunctionsAndRegistry})
        use(test);
}

const AddToAutomaticTestVector addExports(L"Exports", L"Exports of the evaluator", 1, UseExports);
} // namespace
