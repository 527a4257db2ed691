// Tokens, their stack and map, and the formatters: what no expression shows.

#include "EEMissingVariableException.h"
#include "EETokenMap.h"
#include "EETokenStack.h"
#include "NumberFormat.h"
#include "OperatorTable.h"
#include "SelfTestParts.h"

#include <cmath>
#include <limits>

namespace {
using SelfTest::ThrownBy;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

template <typename Value>
EEToken Operand(Value value)
{
    EEToken token;
    token.SetValue(value);
    token.SetPosition(7);
    return token;
}

template <typename Setter>
EEToken OperandAfter(const Setter& set)
{
    EEToken token = Operand(L"x");
    set(token);
    return token;
}

WString ToText(double value)
{
    return DoubleToString(value);
}
WString ToText(bool value)
{
    return value ? L"true" : L"false";
}
WString ToText(const WString& value)
{
    return value;
}

/// What `read` returns, or "#" and the number of the error that it throws.
template <typename Read>
WString Result(const Read& read)
{
    try {
        return ToText(read());
    } catch (const ExpressionEvaluatorException& error) {
        return WString::Format(L"#%u", error.GetCode());
    }
}

template <typename Value>
WString Cast(const EEToken& token)
{
    Value value{};
    return token.TryCast(value) ? ToText(value) : L"-";
}

/// GetNumber, ToNumber, GetBool, GetWString without and with conversion, the casts to a number and a boolean; and
/// whether it is NA.
WString Conversions(const EEToken& token)
{
    return Result([&] { return token.GetNumber(); }) + L" " + Result([&] { return token.ToNumber(); }) + L" " +
        Result([&] { return token.GetBool(); }) + L" " + Result([&] { return token.GetWString(false); }) + L" " +
        Result([&] { return WString(token.GetString(true)); }) + L" " + Cast<double>(token) + L" " + Cast<bool>(token) +
        (token.IsNa() ? L" NA" : L"");
}

/// The three TryGetValue.
WString Values(const EEToken& token)
{
    double number = 0;
    bool hasText = false;
    bool truth = true;
    WString text = L"?";
    const bool isNumber = token.TryGetValue(&number, &hasText);
    const bool isBool = token.TryGetValue(&truth);
    const bool isText = token.TryGetValue(text);
    return WString::Format(L"%d %g %d %d %d %d [%s]", isNumber, number, hasText, isBool, truth, isText, text);
}

WString State(const EEToken& token)
{
    return WString::Format(L"%s @%d code %u", token.GetDumpString(), token.GetPosition(), token.GetErrorCode());
}

WString CarriedError(const EEToken& token)
{
    ExitCode code(1, 2, 3);
    WString message;
    int position = 99;
    if (!token.TryGetErrorMessage(code, message, position))
        return L"none";
    return WString::Format(L"%s %s @%d", code.ToString(), message, position);
}

struct TokenRow
{
    EEToken token;
    const char* conversions;
    const char* values;
    const char* state;
    const char* carried;
};

void TestTokens(TestCommand& test)
{
    const EEToken literal = OperandAfter([](EEToken& token) {
        token.SetValue(1.5);
        token.SetText(L"1.50", 4);
    });
    const EEToken numberOrText = OperandAfter([](EEToken& token) { token.SetNoPrm(5); });
    const EEToken na = OperandAfter([](EEToken& token) { token.SetNA(); });
    const EEToken typeError = OperandAfter([](EEToken& token) { token.SetTypeErr(); });
    const EEToken missing = OperandAfter([](EEToken& token) { token.SetMissingVariable(L"kaka"); });
    const EEToken thrown = OperandAfter(
        [](EEToken& token) { token.SetException(ExpressionEvaluatorException(133, L"Divide by zero", 3)); });
    const EEToken placeless =
        OperandAfter([](EEToken& token) { token.SetException(ExpressionEvaluatorException(146, L"Invalid", -1)); });
    const EEToken foreign = OperandAfter([](EEToken& token) { token.SetException(911, L"1043:505:133"); });
    const EEToken unknown = OperandAfter([](EEToken& token) { token.SetException(911, L"other"); });
    const TokenRow rows[] = {
        {literal, "1.5 1.5 #6 #8 1.50 1.5 false", "1 1.5 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_NUM, Value: 1.50 @7 code 0", "none"},
        {Operand(0.0), "0 0 #6 #8 0 0 true", "1 0 0 0 0 0 []", "Type: TT_OPERAND, DataType: DT_NUM, Value: 0 @7 code 0",
            "none"},
        {Operand(-2.22e-15), "-2.22e-15 -2.22e-15 #6 #8 -2.22e-15 -2.22e-15 true", "1 -2.22e-15 0 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_NUM, Value: -2.22e-15 @7 code 0", "none"},
        {Operand(2.23e-15), "2.23e-15 2.23e-15 #6 #8 2.23e-15 2.23e-15 false", "1 2.23e-15 0 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_NUM, Value: 2.23e-15 @7 code 0", "none"},
        {Operand(infinity), "#149 #2 #6 #8 inf - false", "1 inf 0 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_NUM, Value: inf @7 code 0", "none"},
        {Operand(notANumber), "#150 #2 #6 #8 nan - false", "1 nan 0 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_NUM, Value: nan @7 code 0", "none"},
        {Operand(true), "#143 1 true #8 TRUE 1 true", "0 1 0 1 1 0 []",
            "Type: TT_OPERAND, DataType: DT_BOOL, Value: TRUE @7 code 0", "none"},
        {Operand(false), "#143 0 false #8 FALSE 0 false", "0 1 0 1 0 0 []",
            "Type: TT_OPERAND, DataType: DT_BOOL, Value: FALSE @7 code 0", "none"},
        {Operand(L"fF"), "255 255 #6 fF fF 255 -", "0 1 1 0 0 1 [fF]",
            "Type: TT_OPERAND, DataType: DT_STR, Value: fF @7 code 0", "none"},
        {Operand(L"0xFFFFFFFF"), "4294967295 4294967295 #6 0xFFFFFFFF 0xFFFFFFFF 4294967295 -",
            "0 1 1 0 0 1 [0xFFFFFFFF]", "Type: TT_OPERAND, DataType: DT_STR, Value: 0xFFFFFFFF @7 code 0", "none"},
        {Operand(L"False"), "#4 #2 #6 False False - false", "0 1 1 0 0 1 [False]",
            "Type: TT_OPERAND, DataType: DT_STR, Value: False @7 code 0", "none"},
        {numberOrText, "#4 #2 #6 #8 #8 - -", "0 1 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_NUMSTR, Value: x @7 code 0", "none"},
        {na, "#0 #0 #0 #0 #0 - - NA", "0 1 1 0 0 0 []", "Type: TT_OPERAND, DataType: DT_NONE, Value: #NA @7 code 0",
            "none"},
        {typeError, "#0 #0 #0 #0 #0 - -", "0 1 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_ERR (missingVar=0), Value: #TYPE @7 code 0", "0:505:123 #TYPE @7"},
        {missing, "#48 #0 #48 #48 #48 - - NA", "0 1 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_ERR (missingVar=1), Value: kaka @7 code 0", "0:505:48 kaka @7"},
        {thrown, "#133 #133 #133 #133 #133 - -", "0 1 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_ERR (missingVar=0), Value: Divide by zero @3 code 133",
            "0:505:133 Divide by zero @3"},
        {placeless, "#146 #146 #146 #146 #146 - -", "0 1 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_ERR (missingVar=0), Value: Invalid @7 code 146", "0:505:146 Invalid @7"},
        {foreign, "#911 #911 #911 #911 #911 - -", "0 1 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_ERR (missingVar=0), Value: 1043:505:133 @7 code 911",
            "1043:505:133 #Error: 1043:505:133 @7"},
        {unknown, "#911 #911 #911 #911 #911 - -", "0 1 1 0 0 0 []",
            "Type: TT_OPERAND, DataType: DT_ERR (missingVar=0), Value: other @7 code 911",
            "0:505:911 #Error: other @7"},
        {EEToken(4, L'+', 7), "#0 #0 #0 #0 #0 - - NA", "0 1 1 0 0 0 []",
            "Type: TT_BINARYOP, DataType: DT_NONE, + @7 code 0", "none"},
    };
    for (const TokenRow& row : rows) {
        const WString state = WString::FromUtf8(row.state);
        Assertion::AreEqual(test, state, State(row.token), L"State of a token");
        Assertion::AreEqual(test, WString::FromUtf8(row.conversions), Conversions(row.token), state);
        Assertion::AreEqual(test, WString::FromUtf8(row.values), Values(row.token), state);
        Assertion::AreEqual(test, WString::FromUtf8(row.carried), CarriedError(row.token), state);
    }
}

/// The numbers of the types, on which other plug-ins rely, by their names.
void TestTypeNames(TestCommand& test)
{
    WString types;
    for (int type = -2; type <= 10; ++type) {
        EEToken token(type, L"x");
        const WString dump = token.GetDumpString();
        types += dump.Substring(6, dump.IndexOf(L",") - 6) + L" ";
    }
    Assertion::AreEqual(test,
        L"#Unk(-2) TT_NONE TT_END TT_LEFTP TT_RIGHTP TT_UNARYOP TT_BINARYOP TT_DUALOP TT_FUNCOP TT_OPERAND TT_PRMLIST "
        L"TT_PRMSEP #Unk(10) ",
        types, L"Token types");
    WString dataTypes;
    for (int type = -1; type <= 8; ++type) {
        EEToken token;
        token.SetNoPrm(type);
        dataTypes += token.GetDumpString().Substring(25);
    }
    Assertion::AreEqual(test,
        L"#Unk(-1), DT_NONE, DT_NUM, DT_BOOL, #Unk(3), DT_STR, DT_NUMSTR, #Unk(6), #Unk(7), DT_ERR (missingVar=0), ",
        dataTypes, L"Data types");
}

void TestTokenOperations(TestCommand& test)
{
    const auto priority = [](const wchar_t* text) { return EEToken(TT_BINARYOP, text).GetPriority(); };
    WString priorities;
    for (const wchar_t* text : {L"AND", L"or", L"xor", L"=", L">", L"<", L"<>", L">=", L"<=", L"+", L"-", L"&", L"*",
             L"/", L"^", L"\u00B1", L"(", L"", L"abs", L"<=>", L"andor"})
        priorities.AppendFormat(L"%d", priority(text));
    Assertion::AreEqual(test, L"111222222333445677777", priorities, L"Priorities");
    EEToken token(TT_FUNCOP, L"or");
    const int asFunction = token.GetPriority();
    token.SetType(TT_BINARYOP);
    const int asOperator = token.GetPriority();
    token.SetToken(TT_BINARYOP, L'^');
    const int asPower = token.GetPriority();
    Assertion::AreEqual(test, L"7 1 5 1 -1",
        WString::Format(
            L"%d %d %d %d %d", asFunction, asOperator, asPower, token.IsRightAssoc(), Operand(L"+").GetPriority()),
        L"Priorities are looked up once for each type and text");

    token.SetMissingVariable(L"kaka");
    token.SetToken(TT_END, L'\0');
    Assertion::AreEqual(test, L"0 [] 0",
        WString::Format(L"%d [%s] %d", token.GetType(), token.GetText(), token.IsMissingVariable()), L"SetToken");
    const auto integer = [](double value, int min, int max) {
        return Result([&] { return static_cast<double>(Operand(value).GetInteger(min, max)); });
    };
    Assertion::AreEqual(test, L"9 #50 -1 #50 2 1 10",
        integer(9.9, 0, 10) + L" " + integer(10.1, 0, 10) + L" " + integer(-1.5, -2, 10) + L" " + integer(-0.5, 0, 10) +
            L" " + integer(2, 2, 3) + L" " + integer(1.9, 1, 9) + L" " + integer(10, 0, 10),
        L"GetInteger");
    Assertion::AreEqual(test, L"Type: TT_NONE, DataType: DT_NONE,  @0 code 0", State(EEToken()), L"A new token");
    EEToken fresh(TT_OPERAND, L"");
    fresh.SetNoPrm(1);
    Assertion::AreEqual(test, L"0", fresh.ToString(), L"A new number");
    fresh.SetNoPrm(2);
    Assertion::AreEqual(test, L"FALSE", fresh.ToString(), L"A new boolean");
    fresh.SetNoPrm(8);
    Assertion::IsTrue(test, !fresh.IsMissingVariable() && !fresh.IsNa(), L"A new error is no missing variable");
    const EEToken quoted = Operand(L"1ab");
    Assertion::AreEqual(test, L"#UnknownVariable ? #UnknownVariable #NA1",
        EEToken(TT_NONE, L"x").ToString() + L" " + EEToken(10, L"?").ToString() + L" " +
            EEToken(TT_END, L"").ToString() + L" " + EEToken(TT_OPERAND, L"").ToString(),
        L"ToString of what holds no value");
    Assertion::AreEqual(test, L"#DT=8", OperandAfter([](EEToken& error) { error.SetException(4, L""); }).ToString(),
        L"ToString of an error without a message");

    const wchar_t* const first = Operand(L"first").GetString(false);
    for (int i = 0; i < 9; ++i)
        Operand(L"other").GetString(false);
    Assertion::AreEqual(test, L"first", first, L"The first of ten texts");
    Assertion::IsTrue(test, Operand(L"eleventh").GetString(false) == first, L"The eleventh text takes the first place");

    const ExpressionEvaluatorException quoting(10, L"'%t' is not '%T'", &quoted, 3);
    Assertion::AreEqual(test, L"10 '1ab' is not '1ab' @3", ThrownBy([&] { throw quoting; }), L"A message that quotes");
    Assertion::AreEqual(test, L"0:505:132", ThrownBy([] { CheckAndThrowExitCode(ExitCode(7, 8, 0)); }), L"No error");
    Assertion::AreEqual(test, L"0:505:133", ThrownBy([] { CheckAndThrowExitCode(ExitCode(0, 505, 133)); }), L"Error");
    Assertion::AreEqual(test, L"Missing variable: x|Missing variable: x|x|x|Missing",
        GenerateMissingVariableMessage(L"x") + L"|" + GenerateMissingVariableMessage(L"Missing variable: x") + L"|" +
            PruneVariableName(L"Missing variable: x") + L"|" + PruneVariableName(L"x") + L"|" +
            PruneVariableName(L"Missing"),
        L"Messages of missing variables");
}

void TestStack(TestCommand& test)
{
    const EEToken error = OperandAfter([](EEToken& token) { token.SetException(4, L"bad"); });
    EETokenStack stack;
    for (const EEToken& token : {Operand(1.0), Operand(L"t"), Operand(true), EEToken(TT_OPERAND, L""), error,
             EEToken(TT_BINARYOP, L"<>"), EEToken(TT_UNARYOP, L"\u00B1"), EEToken(TT_FUNCOP, L"abs")})
        stack.Put(token);
    Assertion::AreEqual(
        test, L"vn1 vst vbTRUE vu#NA1 v#bad b<> u\u00B1 abs ", stack.ToString(true), L"A stack with types");
    Assertion::AreEqual(test, L"1 t TRUE #NA1 bad <> \u00B1 abs ", stack.ToString(false), L"A stack");

    EETokenStack other;
    other.Push(stack.Pop());
    other.Put(stack.Pop());
    EEToken token = Operand(2.5);
    other.Push(&token);
    other.Push(token);
    EETokenStack copy(&other);
    Assertion::AreEqual(test, L"2.5 2.5 1 t ", copy.ToString(false), L"Pushed, moved and copied");
    Assertion::AreEqual(test, L"t 2.5 4",
        WString::Format(L"%s %s %d", other.GetTail().ToString(), other.Peek().ToString(), other.Count()),
        L"Tail, top and count");
    Assertion::AreEqual(test, 2.5, other.PopNumber(), L"PopNumber");
    Assertion::AreEqual(test, L"2.5", other.Pop().ToString(), L"Pop");
    Assertion::IsTrue(test, stack.Pop().GetBool() && stack.Count() == 5, L"Pop of a boolean");
    Assertion::AreEqual(test,
        L"Type: TT_OPERAND, DataType: DT_NUM, Value: 1\nType: TT_OPERAND, DataType: DT_STR, Value: t\n",
        other.GetDumpString(), L"The dump of a stack");
    Assertion::AreEqual(test, L"6 Type mismatch @7", ThrownBy([&] { other.Peek().GetBool(); }), L"GetBool of a number");
    other.Clear();
    Assertion::IsTrue(test, other.IsEmpty() && !copy.IsEmpty(), L"Clear");
    Assertion::AreEqual(test, L"9 Stack empty @0", ThrownBy([&] { other.Pop(); }), L"Pop of nothing");
    Assertion::AreEqual(test, L"0:1:22", ThrownBy([&] { other.Peek(); }), L"Peek at nothing");
    Assertion::AreEqual(test, L"0:1:22", ThrownBy([&] { other.GetTail(); }), L"GetTail of nothing");
}

void TestMap(TestCommand& test)
{
    EETokenMap map(0);
    EEToken token = OperandAfter([](EEToken& error) {
        error.SetException(133, L"Divide by zero");
        error.SetMissingVariable(L"kaka");
    });
    map.SetVariable(L"Error", &token);
    map.SetVariable(L"number", 1.0);
    map.SetVariable(L"NUMBER", 1.5);
    map.SetVariable(L"truth", true);
    map.SetVariable(L"text", L"12");
    const auto find = [](EETokenMap& where, const wchar_t* name) { return where.GetVariable(name)->GetDumpString(); };
    Assertion::AreEqual(test, L"Type: TT_OPERAND, DataType: DT_NUM, Value: 1.5", find(map, L"Number"), L"Number");
    Assertion::AreEqual(test, L"Type: TT_OPERAND, DataType: DT_BOOL, Value: TRUE", find(map, L"truth"), L"Truth");
    Assertion::AreEqual(test, L"Type: TT_OPERAND, DataType: DT_STR, Value: 12", find(map, L"text"), L"Text");
    Assertion::AreEqual(test, L"Type: TT_OPERAND, DataType: DT_NONE, Value: #NA", find(map, L"none"), L"None");
    Assertion::AreEqual(
        test, L"0 kaka @7", ThrownBy([&] { map.GetVariable(L"error")->RethrowError(); }), L"No code and no mark");
    WString text;
    const bool found = map.GetVariable(L"number", text, L"default") && text == L"1.5";
    const bool useDefault = !map.GetVariable(L"none", text, L"default") && text == L"default";
    const bool isNa = !map.GetVariable(L"none", text, nullptr) && text == L"#NA";
    Assertion::IsTrue(test, found && useDefault && isNa, L"GetVariable with a default");

    EETokenMap target(33);
    target.SetVariable(L"text", L"replaced");
    target.AddVariables(map);
    Assertion::IsTrue(test, target.GetVariable(L"text") == map.GetVariable(L"text"), L"AddVariables shares tokens");
    map.Clear();
    Assertion::AreEqual(test, L"#NA 12",
        map.GetVariable(L"text")->ToString() + L" " + target.GetVariable(L"text")->ToString(), L"Clear");
}

void TestNumbers(TestCommand& test)
{
    wchar_t text[numberTextSize];
    for (const auto& [value, name] : {std::pair(infinity, L"inf"), {-infinity, L"-inf"}, {-notANumber, L"nan"}})
        Assertion::AreEqual(test, name, efFcvt(value, 3, text), L"A number that is not finite");
    Assertion::AreEqual(test, L"1.50000000000000000000", efFcvt(1.5, 21, text), L"Digits beyond fifteen");
    const auto decompose = [](double value, int count) {
        WString digits;
        int point = 7;
        int sign = 7;
        return Result([&] {
            MyEcvt(digits, value, count, &point, &sign);
            return WString::Format(L"%s %d %d", digits, point, sign);
        });
    };
    Assertion::AreEqual(test, L"0000 0 0|0 0 1|125 -2 1|1 1 0",
        decompose(0.0, 4) + L"|" + decompose(-0.0, 1) + L"|" + decompose(-0.00125, 3) + L"|" + decompose(1.25, 1),
        L"MyEcvt");
    Assertion::AreEqual(test, L"0:200:75", ThrownBy([&] { decompose(1.5, 100); }), L"MyEcvt beyond its buffer");
    MyItow(-12345, text, sizeof text);
    Assertion::AreEqual(test, L"-12345", text, L"MyItow");
    Assertion::AreEqual(test, 0, efAdjustDblForDisplay(0, 3), L"A nudge for zero");
    Assertion::AreEqual(test, L"149 Number is infinite @-1 150 Not a number @-1",
        ThrownBy([] { EEToken::ValidNumber(-infinity); }) + L" " + ThrownBy([] { EEToken::ValidNumber(notANumber); }),
        L"ValidNumber");
}
} // namespace

void SelfTest::TestValues(TestCommand& test)
{
    TestTokens(test);
    TestTypeNames(test);
    TestTokenOperations(test);
    TestStack(test);
    TestMap(test);
    TestNumbers(test);
}
