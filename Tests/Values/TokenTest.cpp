#include "EEToken.h"
#include "NumberFormat.h"
#include "Support/ThrownError.h"
#include "Support/Tokens.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <tuple>

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

TEST(TokenTest, Conversions)
{
    // GetNumber, ToNumber, GetBool, GetWString without and with conversion; casts; NA
    const std::pair<EEToken, const char*> cases[] = {{literal_lc, "1.5 1.5 #6 #8 1.50; 1.5 false"},
        {Operand(0.0), "0 0 #6 #8 0; 0 true"}, {Operand(-2.2e-15), "-2.2e-15 -2.2e-15 #6 #8 -2.2e-15; -2.2e-15 true"},
        {Operand(2.3e-15), "2.3e-15 2.3e-15 #6 #8 2.3e-15; 2.3e-15 false"},
        {Operand(INFINITY), "#149 #2 #6 #8 inf; - false"}, {Operand(-INFINITY), "#149 #2 #6 #8 -inf; - false"},
        {Operand(std::nan("")), "#150 #2 #6 #8 nan; - false"}, {Operand(true), "#143 1 true #8 TRUE; 1 true"},
        {Operand(false), "#143 0 false #8 FALSE; 0 false"},
        {Operand(L"-12.5e1"), "-125 -125 #6 -12.5e1 -12.5e1; -125 -"}, {Operand(L"fF"), "255 255 #6 fF fF; 255 -"},
        {Operand(L"0xFFFFFFFF"), "4294967295 4294967295 #6 0xFFFFFFFF 0xFFFFFFFF; 4294967295 -"},
        {Operand(L"0x100000000"), "#4 #2 #6 0x100000000 0x100000000; - -"},
        {Operand(L"1e+999"), "#4 #2 #6 1e+999 1e+999; - -"}, {Operand(L"False"), "#4 #2 #6 False False; - false"},
        {Operand(L""), "#4 #2 #6  ; - -"}, {numberOrText_lc, "#4 #2 #6 #8 #8; - -"}, {na_lc, "#0 #0 #0 #0 #0; - - NA"},
        {error_lc, "#133 #133 #133 #133 #133; - -"}, {missing_lc, "#48 #0 #48 #48 #48; - - NA"},
        {plus_lc, "#0 #0 #0 #0 #0; - - NA"}};
    for (const auto& [value, outcomes] : cases) {
        const EEToken& token = value;
        const std::string found = Outcome([&] { return token.GetNumber(); }) + " " +
            Outcome([&] { return token.ToNumber(); }) + " " + Outcome([&] { return token.GetBool(); }) + " " +
            Outcome([&] { return token.GetWString(false); }) + " " +
            Outcome([&] { return WString(token.GetString(true)); }) + "; " + Cast<double>(token) + " " +
            Cast<bool>(token) + (token.IsNa() ? " NA" : "");
        EXPECT_EQ(found, outcomes) << StateOf(token);
    }
}

TEST(TokenTest, IntegersAreTruncatedWithinTheirRange)
{
    const std::tuple<double, int, int, const char*> rows[] = {{9.9, 0, 10, "9"}, {-1.5, -2, 10, "-1"},
        {10.7, 0, 10, "#50"}, {-0.5, 0, 10, "#50"}, {2147483647.0, INT_MIN, INT_MAX, "2147483647"},
        {2147483647.5, INT_MIN, INT_MAX, "#50"}, {-2147483648.0, INT_MIN, INT_MAX, "-2147483648"}};
    for (const auto& row : rows) {
        const auto& [value, min, max, outcome] = row;
        const EEToken token = Operand(value);
        const int limits[] = {min, max};
        EXPECT_EQ(Outcome([&] { return double(token.GetInteger(limits[0], limits[1])); }), outcome) << value;
    }
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
    const EEToken untold = OperandAfter([](EEToken& token) { token.SetException(4, L""); });
    const std::tuple<EEToken, const char*, const char*> cases[] = {
        {EEToken(TT_NONE, L"x"), "#UnknownVariable", "TT_NONE, DataType: DT_NONE, x"},
        {EEToken(TT_END, L""), "#UnknownVariable", "TT_END, DataType: DT_NONE, "},
        {EEToken(10, L"?"), "?", "#Unk(10), DataType: DT_NONE, ?"},
        {literal_lc, "1.50", "TT_OPERAND, DataType: DT_NUM, Value: 1.50"},
        {Operand(L"100%s"), "100%s", "TT_OPERAND, DataType: DT_STR, Value: 100%s"},
        {numberOrText_lc, "x", "TT_OPERAND, DataType: DT_NUMSTR, Value: x"},
        {EEToken(TT_OPERAND, L""), "#NA1", "TT_OPERAND, DataType: DT_NONE, Value: #NA1"},
        {untold, "#DT=8", "TT_OPERAND, DataType: DT_ERR (missingVar=0), Value: #DT=8"},
        {missing_lc, "kaka", "TT_OPERAND, DataType: DT_ERR (missingVar=1), Value: kaka"}};
    for (const auto& [token, text, dump] : cases) {
        EXPECT_EQ(token.ToString().ToUtf8(), text);
        EXPECT_EQ(token.GetDumpString().ToUtf8(), std::string("Type: ") + dump);
    }
}

TEST(TokenTest, CarriedErrorsAsExceptionAndAsExitCode)
{
    const auto foreign = [](const wchar_t* text) {
        return OperandAfter([&](EEToken& token) { token.SetException(911, text); });
    };
    EEToken numberedMissing = error_lc;
    numberedMissing.SetMissingVariable(L"kaka");
    const std::tuple<EEToken, const char*, const char*> cases[] = {{Operand(L""), "nothing", "1:2:3 as before @99"},
        {na_lc, "0 #NA @7", "1:2:3 as before @99"}, {plus_lc, "0 + @7", "1:2:3 as before @99"},
        {error_lc, "133 Divide by Divide by %t @7", "0:505:133 Divide by %t @7"},
        {typeError_lc, "0 #TYPE @7", "0:505:123 #TYPE @7"},
        {missing_lc, "missing kaka: 48 Missing variable: kaka @7", "0:505:48 kaka @7"},
        {numberedMissing, "missing kaka: 48 Missing variable: kaka @7", "0:505:133 kaka @7"},
        {foreign(L"1043:505:133"), "911 1043:505:133 @7", "1043:505:133 #Error: 1043:505:133 @7"},
        {foreign(L"1:2:3:4"), "911 1:2:3:4 @7", "0:505:911 #Error: 1:2:3:4 @7"}};
    for (const auto& [value, thrown, expected] : cases) {
        const EEToken& token = value;
        EXPECT_EQ(ThrownBy([&] { token.RethrowError(); }), thrown);
        ExitCode code(1, 2, 3);
        WString message = L"as before";
        int position = 99;
        const bool isError = token.TryGetErrorMessage(code, message, position);
        EXPECT_EQ(isError, position == 7) << thrown;
        EXPECT_EQ(WString::Format(L"%s %s @%d", code.ToString(), message, position).ToUtf8(), expected);
    }
}

TEST(ErrorsTest, MessagesQuoteTheTokenAndNoPrefixIsPutTwice)
{
    const EEToken token = Operand(L"50%t");
    const ExpressionEvaluatorException error(10, L"'%t' is not '%T', %s", &token, 3);
    EXPECT_EQ(ThrownBy([&] { throw error; }), "10 '50%t' is not '50%t', %s @3");
    const std::pair<const wchar_t*, const char*> rows[] = {{L"x", "missing x: 48 Missing variable: x @5"},
        {L"Missing variable: x", "missing x: 48 Missing variable: x @5"},
        {L"missing variable: x", "missing missing variable: x: 48 Missing variable: missing variable: x @5"},
        {L"", "missing : 48 Missing variable:  @5"}};
    for (const auto& [name, expected] : rows) {
        const wchar_t* variable = name;
        EXPECT_EQ(ThrownBy([&] { throw EEMissingVariableException(variable, 5); }), expected);
    }
    EXPECT_EQ(ThrownBy([] { CheckAndThrowExitCode(ExitCode(0, 505, 133)); }), "exit code 0:505:133");
    EXPECT_EQ(ThrownBy([] { CheckAndThrowExitCode(ExitCode(7, 8, 0)); }), "exit code 0:505:132");
}
