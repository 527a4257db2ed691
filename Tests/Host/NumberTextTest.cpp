#include "Text/NumberText.h"
#include "Support/DecimalCommaLocale.h"
#include "Support/HostTexts.h"
#include "Text/CharacterCase.h"

#include <gtest/gtest.h>

#include <bit>
#include <climits>
#include <cmath>
#include <cwchar>
#include <random>

/// The value's bits and the number of characters read, as a text.
static std::string Reading(double value, std::ptrdiff_t count)
{
    return std::to_string(std::bit_cast<std::uint64_t>(value)) + " of " + std::to_string(count);
}

/// Under the portable locale that tests run in, wcstod is the measure.
static void ExpectReadAsWcstod(const std::wstring& text)
{
    wchar_t* expectedEnd = nullptr;
    const double expected = std::wcstod(text.c_str(), &expectedEnd);
    double value = 0;
    const wchar_t* const end = ReadDouble(text.c_str(), value);
    EXPECT_EQ(Reading(value, end - text.c_str()), Reading(expected, expectedEnd - text.c_str()))
        << WString(text).ToUtf8();
}

TEST(ReadDouble, ReadsAsWcstod)
{
    for (const wchar_t* text : {L"", L"5.", L".5", L".", L"..5", L"1.2.3", L"1E+5", L"1e-5", L"1e", L"1e+", L"1e5.5",
             L"1ee5", L"1-2", L"00012", L"0x", L"0X", L"0x1F", L"0x1p-3", L"0x.8", L"0x.", L"0xg", L"00x1", L"\t\n1",
             L"-1", L"+1", L"--1", L"-.5", L"-", L"infinite", L"-inf", L"nan", L"nan(1)z", L"1,5", L"1_000", L"e5",
             L"1e308", L"1e309", L"1e99999999999", L"4e-324", L"2e-324", L"1e-999", L"2.2250738585072011e-308",
             L"2.2250738585072014e-308", L"1.7976931348623157e308", L"1.7976931348623159e308", L"9007199254740993",
             L"0.1", L"12345.678901234", L"\u0661", L"1\u00E5"})
        ExpectReadAsWcstod(text);
    for (const std::size_t length : {62u, 63u, 64u, 65u, 1000u, 100'000u}) {
        ExpectReadAsWcstod(std::wstring(length, L'7'));
        ExpectReadAsWcstod(L"0." + std::wstring(length, L'0') + L"7e" + std::to_wstring(length) + L"x");
        ExpectReadAsWcstod(L"1e" + std::wstring(length, L'0') + L"1+");
    }
    std::mt19937 random(1);
    static const std::wstring characters = L"0123456789012345678901234567890123456789....eE+-xX ";
    for (int i = 0; i < 20'000; ++i) {
        std::wstring text(random() % 30, L' ');
        for (wchar_t& ch : text)
            ch = characters[random() % characters.size()];
        ExpectReadAsWcstod(text);
    }
}

TEST(WholeTexts, AreRefusedBeyondTheirLimits)
{
    double real = 7;
    for (const WString& text : {WString(L"1\0", 2), WString(L"10.5"), WString(L"-0.5")})
        EXPECT_FALSE(text.TryParseDouble(real, 0, 10)) << text.ToUtf8();
    EXPECT_EQ(real, 7);

    unsigned int value = 7;
    WString error;
    EXPECT_FALSE(WString(L"f").TryGetHexUInt(value, 16, 255, &error));
    EXPECT_EQ(error, L"\"f\" is not a hexadecimal number from 10 to ff");
    EXPECT_EQ(value, 7u);
    EXPECT_TRUE(WString(L"fF").TryGetHexUInt(value, 255, 255));
}

TEST(Format, FormatsAsPrintf)
{
    const WString text(L"%s%n");
    const std::pair<WString, WString> rows[] = {
        {WString::Format(L"[%s] %d%% %s %%d%s", text, 5, L"x", L""), L"[%s%n] 5% x %d"},
        {WString::Format(L"[%-6s][%6s][%.2s][%06s]", text, text, text, L"a"), L"[%s%n  ][  %s%n][%s][     a]"},
        {WString::Format(L"%d %d %i", UINT_MAX, LLONG_MIN, ULLONG_MAX),
            L"4294967295 -9223372036854775808 18446744073709551615"},
        {WString::Format(L"%x %u %x", -1LL, -1, static_cast<signed char>(-1)), L"ffffffffffffffff 4294967295 ffffffff"},
        {WString::Format(L"%X %c%c%3c%d", 255, L'\u00E5', 66, L'c', true), L"FF \u00E5B  c1"},
        {WString::Format(L"%f %e %g %.3f", HUGE_VAL, -HUGE_VAL, NAN, -NAN), L"inf -inf nan nan"},
        {WString::Format(L"%05f|%6.1f", HUGE_VAL, NAN), L"  inf|   nan"},
        {WString::Format(L"%s", WString(L"a\0b", 3)), WString(L"a\0b", 3)}};
    for (const auto& [formatted, expected] : rows)
        EXPECT_EQ(formatted, expected);
    WString appended(40, L'a');
    appended.AppendFormat(L"%s%s", appended, appended);
    EXPECT_EQ(appended, WString(120, L'a'));
    EXPECT_EQ(WString::Format(L"%4096d", 1).Length(), 4096u);

    for (const wchar_t* format : {L"%s", L"%f", L"%d %d", L"%n", L"%ld", L"%#x", L"%", L"%5", L"%4097d", L"%*d"})
        EXPECT_THROW(WString::Format(format, 1), std::exception) << WString(format).ToUtf8();
    EXPECT_THROW(WString::Format(L"%d", L"1"), std::exception);
    EXPECT_THROW(WString::Format(L"%d", 1.0), std::exception);
    EXPECT_THROW(WString::Format(L"%c", L"c"), std::exception);
    EXPECT_THROW(WString::Format(L"%.99999999999999999999f", 1.0), std::exception);
}

TEST(Format, AgreesWithTheCLibrary)
{
    std::mt19937 random(2);
    for (int i = 0; i < 20'000; ++i) {
        const bool isDouble = random() % 2;
        const wchar_t conversion = std::wstring_view(isDouble ? L"feg" : L"dux")[random() % 3];
        std::wstring directive = L"%";
        for (const wchar_t flag : {L'-', L'0', L'+', L' '}) {
            const bool isForSigned = flag == L'+' || flag == L' ';
            if (random() % 3 == 0 && (!isForSigned || isDouble || conversion == L'd'))
                directive += flag;
        }
        if (random() % 2)
            directive += std::to_wstring(1 + random() % 30);
        if (random() % 2)
            directive += L'.' + std::to_wstring(random() % 25);
        directive += conversion;
        const auto check = [&](auto number) {
            wchar_t expected[1024];
            std::swprintf(expected, 1024, directive.c_str(), number);
            EXPECT_EQ(WString::Format(directive.c_str(), number), expected) << WString(directive).ToUtf8();
        };
        if (isDouble)
            check(std::ldexp(static_cast<int>(random()), static_cast<int>(random() % 120) - 80));
        else
            check(static_cast<int>(random() >> (random() % 2 ? 0 : 28)) | 1); // 0 to no digits prints as 0 here
    }
}

TEST(Numbers, DoNotDependOnTheLocale)
{
    const DecimalCommaLocale locale;
    double value = 0;
    for (const wchar_t* text : {L"1.5e1,5", L"+15.,5", L"0x1E.0,5"}) { // the ways through ReadDouble
        EXPECT_STREQ(ReadDouble(text, value), L",5");
        EXPECT_EQ(value, text[1] == L'x' ? 30 : 15) << WString(text).ToUtf8();
    }
    EXPECT_TRUE(WString(L"-12.50").TryParseDouble(value, -12.5, -12.5));
    EXPECT_FALSE(WString(L"12,5").TryParseDouble(value, -100, 100));
    EXPECT_EQ(WString::Format(L"%.2f %g %e %d", 1234567.5, 0.5, 1.5, 1234567), L"1234567.50 0.5 1.500000e+00 1234567");
    EXPECT_EQ(ToUpper(L'\u00E5'), L'\u00C5');
}
