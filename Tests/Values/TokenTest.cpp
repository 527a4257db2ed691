#include "EEToken.h"
#include "NumberFormat.h"
#include "Support/ThrownError.h"
#include "Support/Tokens.h"

#include <climits>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <vector>

namespace {
template <typename Setter>
EEToken OperandAfter(const Setter& set)
{
    EEToken token = Operand(L"x");
    set(token);
    return token;
}

const EEToken literal_lc = OperandAfter([](EEToken& token) {
    token.SetValue(1.5);
    token.SetText(L"1.50", 4);
});
const EEToken numberOrText_lc = OperandAfter([](EEToken& token) { token.SetNoPrm(DT_NUMSTR); });
const EEToken na_lc = OperandAfter([](EEToken& token) { token.SetNA(); });
const EEToken typeError_lc = OperandAfter([](EEToken& token) { token.SetTypeErr(); });
const EEToken error_lc = OperandAfter([](EEToken& token) { token.SetException(133, L"Divide by %t"); });
const EEToken missing_lc = OperandAfter([](EEToken& token) { token.SetMissingVariable(L"kaka"); });
const EEToken plus_lc(TT_BINARYOP, L'+', 7);

std::string StateOf(const EEToken& token)
{
    return WString::Format(L"%d/%d '%s' @%d, code %u%s", token.GetType(), token.GetDataType(), token.GetText(),
        token.GetPosition(), token.GetErrorCode(), token.IsMissingVariable() ? L", missing" : L"")
        .ToUtf8();
}

std::string ToText(double value)
{
    return DoubleToString(value).ToUtf8();
}
std::string ToText(bool value)
{
    return value ? "true" : "false";
}
std::string ToText(const WString& value)
{
    return value.ToUtf8();
}

/// The value that `read` returns, or "#" and the number of the error that it throws.
template <typename Read>
std::string Outcome(const Read& read)
{
    try {
        return ToText(read());
    } catch (const ExpressionEvaluatorException& error) {
        return "#" + std::to_string(error.GetCode());
    }
}

/// What TryCast yields, or "-".
template <typename Value>
std::string Cast(const EEToken& token)
{
    Value value{};
    return token.TryCast(value) ? ToText(value) : "-";
}
} // namespace

TEST(TokenTest, SettersChangeWhatTheyNameAndNothingElse)
{
    const ExpressionEvaluatorException placed(4, L"bad", 9);
    const ExpressionEvaluatorException unplaced(4, L"bad", -1);
    struct Case
    {
        std::function<void(EEToken&)> set;
        const char* state;
    };
    const Case cases[] = {
        {[](EEToken&) {}, "7/8 'x' @5, code 133, missing"},
        {[](EEToken& token) { token.SetValue(L"12"); }, "7/4 '12' @5, code 133"},
        {[](EEToken& token) { token.SetValue(WString(L"12")); }, "7/4 '12' @5, code 133"},
        {[](EEToken& token) { token.SetValue(0.25); }, "7/1 '' @5, code 133"},
        {[](EEToken& token) { token.SetValue(true); }, "7/2 '' @5, code 133"},
        {[](EEToken& token) { token.SetNA(); }, "7/0 '#NA' @5, code 133, missing"},
        {[](EEToken& token) { token.SetTypeErr(); }, "7/8 '#TYPE' @5, code 133, missing"},
        {[](EEToken& token) { token.SetException(4, L"bad"); }, "7/8 'bad' @5, code 4, missing"},
        {[&](EEToken& token) { token.SetException(placed); }, "7/8 'bad' @9, code 4, missing"},
        {[&](EEToken& token) { token.SetException(unplaced); }, "7/8 'bad' @5, code 4, missing"},
        {[](EEToken& token) { token.ClearError(); }, "7/8 'x' @5, code 0"},
        {[](EEToken& token) { token.SetType(TT_LEFTP); }, "1/8 'x' @5, code 133, missing"},
        {[](EEToken& token) { token.SetToken(TT_LEFTP, L'('); }, "1/8 '(' @5, code 133"},
        {[](EEToken& token) { token.SetToken(TT_BINARYOP, L"<>"); }, "4/8 '<>' @5, code 133"},
    };
    for (const Case& c : cases) {
        EEToken token(TT_NONE, L'?', 5);
        token.SetException(133, L"Divide by zero");
        token.SetMissingVariable(L"x");
        c.set(token);
        EXPECT_EQ(StateOf(token), c.state);
    }
}

TEST(TokenTest, CopiesShareNothingAndAreCounted)
{
    const int countBefore = GetDebugObjectCountExpressionEvaluator_EEToken();
    {
        EEToken original = Operand(L"a text beyond the inline size");
        EEToken copy(original);
        EEToken assigned;
        assigned = copy;
        EEToken assignedByPointer;
        assignedByPointer = &copy;
        original.SetValue(1.0);
        copy.SetNA();
        const EEToken moved(std::move(assigned));
        EXPECT_EQ(StateOf(moved), "7/4 'a text beyond the inline size' @7, code 0");
        EXPECT_EQ(StateOf(assignedByPointer), StateOf(moved));
        EXPECT_EQ(GetDebugObjectCountExpressionEvaluator_EEToken(), countBefore + 5);
    }
    EXPECT_EQ(GetDebugObjectCountExpressionEvaluator_EEToken(), countBefore);
}

TEST(TokenTest, PriorityIsThatOfTheOperator)
{
    const std::vector<const wchar_t*> namesByPriority[] = {{}, {L"and", L"OR", L"Xor"},
        {L"=", L">", L"<", L"<>", L">=", L"<="}, {L"+", L"-", L"&"}, {L"*", L"/"}, {L"^"}, {L"\u00B1"},
        {L"(", L",", L"", L"><", L"ands", L"an", L"xor and or"}};
    int priority = 0;
    for (const auto& names : namesByPriority) {
        for (const wchar_t* name : names) {
            EEToken token(TT_BINARYOP, name);
            EXPECT_EQ(token.GetPriority(), priority) << StateOf(token);
            EXPECT_EQ(token.IsRightAssoc(), priority == 5) << StateOf(token);
        }
        ++priority;
    }
    EXPECT_EQ(EEToken(TT_FUNCOP, L"or").GetPriority(), 7);
    EXPECT_EQ(EEToken(TT_OPERAND, L"or").GetPriority(), -1);

    EEToken token = plus_lc;
    EXPECT_EQ(token.GetPriority(), 3);
    token.SetText(L"*", 1);
    EXPECT_EQ(token.GetPriority(), 3); // kept until the type is set
    token.SetType(TT_BINARYOP);
    EXPECT_EQ(token.GetPriority(), 4);
    token.SetToken(TT_BINARYOP, L'=');
    EXPECT_EQ(token.GetPriority(), 2);
}

TEST(TokenTest, Conversions)
{
    struct Case
    {
        EEToken token;
        const char* outcomes; // GetNumber, ToNumber, GetBool, GetWString without and with conversion; casts; NA
    };
    const Case cases[] = {
        {Operand(0.25), "0.25 0.25 #6 #8 0.25; 0.25 false"},
        {literal_lc, "1.5 1.5 #6 #8 1.50; 1.5 false"},
        {Operand(0.0), "0 0 #6 #8 0; 0 true"},
        {Operand(-2.2e-15), "-2.2e-15 -2.2e-15 #6 #8 -2.2e-15; -2.2e-15 true"},
        {Operand(2.3e-15), "2.3e-15 2.3e-15 #6 #8 2.3e-15; 2.3e-15 false"},
        {Operand(INFINITY), "#149 #2 #6 #8 inf; - false"},
        {Operand(-INFINITY), "#149 #2 #6 #8 -inf; - false"},
        {Operand(std::nan("")), "#150 #2 #6 #8 nan; - false"},
        {Operand(true), "#143 1 true #8 TRUE; 1 true"},
        {Operand(false), "#143 0 false #8 FALSE; 0 false"},
        {Operand(L"-12.5e1"), "-125 -125 #6 -12.5e1 -12.5e1; -125 -"},
        {Operand(L"fF"), "255 255 #6 fF fF; 255 -"},
        {Operand(L"0xFFFFFFFF"), "4294967295 4294967295 #6 0xFFFFFFFF 0xFFFFFFFF; 4294967295 -"},
        {Operand(L"0x100000000"), "#4 #2 #6 0x100000000 0x100000000; - -"},
        {Operand(L"1e+999"), "#4 #2 #6 1e+999 1e+999; - -"},
        {Operand(L"False"), "#4 #2 #6 False False; - false"},
        {Operand(L""), "#4 #2 #6  ; - -"},
        {numberOrText_lc, "#4 #2 #6 #8 #8; - -"},
        {na_lc, "#0 #0 #0 #0 #0; - - NA"},
        {error_lc, "#133 #133 #133 #133 #133; - -"},
        {missing_lc, "#48 #0 #48 #48 #48; - - NA"},
        {plus_lc, "#0 #0 #0 #0 #0; - - NA"},
    };
    for (const Case& c : cases) {
        const EEToken& token = c.token;
        std::ostringstream outcomes;
        outcomes << Outcome([&] { return token.GetNumber(); }) << " " << Outcome([&] { return token.ToNumber(); })
                 << " " << Outcome([&] { return token.GetBool(); }) << " "
                 << Outcome([&] { return token.GetWString(false); }) << " "
                 << Outcome([&] { return WString(token.GetString(true)); }) << "; " << Cast<double>(token) << " "
                 << Cast<bool>(token) << (token.IsNa() ? " NA" : "");
        EXPECT_EQ(outcomes.str(), c.outcomes) << StateOf(token);
    }
}

TEST(TokenTest, ValuesOfJustOneType)
{
    struct Case
    {
        EEToken token;
        const char* values; // whether found and value: number (and whether it has a text), boolean, text
    };
    const Case cases[] = {{Operand(2.5), "1:2.5 computed, 0:0, 0:''"}, {literal_lc, "1:1.5 written, 0:0, 0:''"},
        {Operand(true), "0:1 computed, 1:1, 0:''"}, {Operand(L"7"), "0:1 written, 0:0, 1:'7'"},
        {error_lc, "0:1 written, 0:0, 0:''"}, {plus_lc, "0:1 written, 0:0, 0:''"}};
    for (const Case& c : cases) {
        double number = 5;
        bool hasText = false;
        bool boolean = true;
        WString text = L"old";
        const int foundNumber = c.token.TryGetValue(&number, &hasText);
        const int foundBoolean = c.token.TryGetValue(&boolean);
        const int foundText = c.token.TryGetValue(text);
        EXPECT_EQ(WString::Format(L"%d:%g %s, %d:%d, %d:'%s'", foundNumber, number, hasText ? L"written" : L"computed",
                      foundBoolean, boolean ? 1 : 0, foundText, text)
                      .ToUtf8(),
            c.values);
        EXPECT_EQ(c.token.TryGetValue(&number, nullptr), foundNumber != 0);
    }
}

TEST(TokenTest, IntegersAreTruncatedWithinTheirRange)
{
    const auto integer = [](double value, int min, int max) {
        return Outcome([&] { return static_cast<double>(Operand(value).GetInteger(min, max)); });
    };
    EXPECT_EQ(integer(9.9, 0, 10), "9");
    EXPECT_EQ(integer(-1.5, -2, 10), "-1");
    EXPECT_EQ(integer(10.7, 0, 10), "#50");
    EXPECT_EQ(integer(-0.5, 0, 10), "#50");
    EXPECT_EQ(integer(2147483647.0, INT_MIN, INT_MAX), "2147483647");
    EXPECT_EQ(integer(2147483647.5, INT_MIN, INT_MAX), "#50");
    EXPECT_EQ(integer(-2147483648.0, INT_MIN, INT_MAX), "-2147483648");
}

TEST(TokenTest, TheEleventhTextTakesTheSlotOfTheFirst)
{
    const wchar_t* first = Operand(L"the first text, longer than inline").GetString(false);
    for (int i = 0; i < 9; ++i)
        Operand(L"another").GetString(false);
    EXPECT_EQ(WString(first), L"the first text, longer than inline");
    EXPECT_EQ(Operand(L"the eleventh").GetString(false), first);
    EXPECT_EQ(WString(first), L"the eleventh");
}

TEST(TokenTest, TextsForDisplayAndLog)
{
    struct Case
    {
        EEToken token;
        const char* text;
        const char* dump;
    };
    const Case cases[] = {
        {EEToken(), "#UnknownVariable", "Type: TT_NONE, DataType: DT_NONE, "},
        {EEToken(TT_NONE, L"x"), "#UnknownVariable", "Type: TT_NONE, DataType: DT_NONE, x"},
        {EEToken(TT_END, L""), "#UnknownVariable", "Type: TT_END, DataType: DT_NONE, "},
        {EEToken(TT_PRMSEP, L","), ",", "Type: TT_PRMSEP, DataType: DT_NONE, ,"},
        {EEToken(10, L"?"), "?", "Type: #Unk(10), DataType: DT_NONE, ?"},
        {literal_lc, "1.50", "Type: TT_OPERAND, DataType: DT_NUM, Value: 1.50"},
        {Operand(L"100%s"), "100%s", "Type: TT_OPERAND, DataType: DT_STR, Value: 100%s"},
        {Operand(L""), "", "Type: TT_OPERAND, DataType: DT_STR, Value: "},
        {numberOrText_lc, "x", "Type: TT_OPERAND, DataType: DT_NUMSTR, Value: x"},
        {EEToken(TT_OPERAND, L""), "#NA1", "Type: TT_OPERAND, DataType: DT_NONE, Value: #NA1"},
        {OperandAfter([](EEToken& token) { token.SetException(4, L""); }), "#DT=8",
            "Type: TT_OPERAND, DataType: DT_ERR (missingVar=0), Value: #DT=8"},
        {missing_lc, "kaka", "Type: TT_OPERAND, DataType: DT_ERR (missingVar=1), Value: kaka"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(c.token.ToString().ToUtf8(), c.text);
        EXPECT_EQ(c.token.GetDumpString().ToUtf8(), c.dump);
    }
}

TEST(TokenTest, ErrorsAreThrownWhole)
{
    EXPECT_EQ(ThrownBy([] { Operand(true).GetNumber(); }), "143 Boolean is not a number @7");
    EXPECT_EQ(ThrownBy([] { Operand(L"x").GetNumber(); }), "4 Type mismatch @7");
    EXPECT_EQ(ThrownBy([] { Operand(INFINITY).GetNumber(); }), "149 Number is infinite @-1");
    EXPECT_EQ(ThrownBy([] { Operand(std::nan("")).GetNumber(); }), "150 Not a number @-1");
    EXPECT_EQ(ThrownBy([] { Operand(L"x").ToNumber(); }), "2 Type mismatch @7");
    EXPECT_EQ(ThrownBy([] { missing_lc.ToNumber(); }), "0 kaka @7");
    EXPECT_EQ(ThrownBy([] { Operand(11.0).GetInteger(0, 10); }), "50 Argument value out of range @7");
    EXPECT_EQ(ThrownBy([] { Operand(1.0).GetBool(); }), "6 Type mismatch @7");
    EXPECT_EQ(ThrownBy([] { Operand(1.0).GetWString(false); }), "8 Type mismatch @7");
}

TEST(TokenTest, CarriedErrorsAsExceptionAndAsExitCode)
{
    const auto foreign = [](const wchar_t* text) {
        return OperandAfter([&](EEToken& token) { token.SetException(911, text); });
    };
    EEToken numberedMissing = error_lc;
    numberedMissing.SetMissingVariable(L"kaka");
    struct Case
    {
        EEToken token;
        const char* thrown;
        const char* message;
    };
    const Case cases[] = {
        {Operand(L""), "nothing", "1:2:3 as before @99"},
        {na_lc, "0 #NA @7", "1:2:3 as before @99"},
        {plus_lc, "0 + @7", "1:2:3 as before @99"},
        {error_lc, "133 Divide by %t @7", "0:505:133 Divide by %t @7"},
        {typeError_lc, "0 #TYPE @7", "0:505:123 #TYPE @7"},
        {missing_lc, "missing kaka: 48 Missing variable: kaka @7", "0:505:48 kaka @7"},
        {numberedMissing, "missing kaka: 48 Missing variable: kaka @7", "0:505:133 kaka @7"},
        {foreign(L"1043:505:133"), "911 1043:505:133 @7", "1043:505:133 #Error: 1043:505:133 @7"},
        {foreign(L"1:2:3:4"), "911 1:2:3:4 @7", "0:505:911 #Error: 1:2:3:4 @7"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(ThrownBy([&] { c.token.RethrowError(); }), c.thrown);
        ExitCode code(1, 2, 3);
        WString message = L"as before";
        int position = 99;
        const bool isError = c.token.TryGetErrorMessage(code, message, position);
        EXPECT_EQ(isError, position == 7) << c.thrown;
        EXPECT_EQ(WString::Format(L"%s %s @%d", code.ToString(), message, position).ToUtf8(), c.message);
    }
}
