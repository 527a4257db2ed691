// What expressions do not reach: digits beyond 15, numbers that are not finite, and a locale with a decimal comma.

#include "NumberFormat.h"
#include "FunctionClasses.h"
#include "Support/DecimalCommaLocale.h"
#include "Support/Expressions.h"
#include "Support/ThrownError.h"

#include <bit>
#include <cmath>
#include <limits>
#include <random>

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

template <typename Formatter, typename... More>
std::string Text(Formatter formatter, double value, short digits, More... more)
{
    wchar_t text[numberTextSize];
    return WString(formatter(value, digits, text, more...)).ToUtf8();
}
} // namespace

TEST(NumberFormatTest, NumbersThatAreNotFiniteHaveNames)
{
    for (const auto& [value, name] : {std::pair(infinity, "inf"), {-infinity, "-inf"}, {-notANumber, "nan"}}) {
        EXPECT_TRUE(Text(efFcvt, value, 3) == name && Text(efFtoa, value, 3) == name);
        EXPECT_EQ(Text(efFmtEng, value, 3, false), name);
    }
}

TEST(NumberFormatTest, RandomNumbersAreRoundedExactlyAndReadBack)
{
    std::mt19937_64 random;
    for (int i = 0; i < 20000; ++i) {
        const auto value = std::bit_cast<double>(random());
        const auto count = static_cast<short>(2 + i % 16);
        if (!std::isfinite(value))
            continue;
        char expected[64];
        std::snprintf(expected, sizeof expected, "%+.*e", count - 1, value);

        WString digits;
        int point = 0;
        int sign = 0;
        MyEcvt(digits, value, count, &point, &sign);
        const WString decomposed = WString::Format(L"%s%c.%se%s%02d", sign != 0 ? L"-" : L"+", digits[0],
            digits.Substring(1), point < 1 ? L"-" : L"+", std::abs(point - 1));
        ASSERT_EQ(decomposed.ToUtf8(), expected);

        const double shown = std::strtod(expected, nullptr);
        ASSERT_EQ(std::strtod(Text(efFcvt, value, count).c_str(), nullptr), shown) << expected;
        ASSERT_EQ(std::strtod(Text(efFtoa, value, count).c_str(), nullptr), shown) << expected;
        ASSERT_EQ(std::strtod(Text(efFmtEng, value, count, i % 2 == 0).c_str(), nullptr), shown) << expected;
    }
}

TEST(NumberFormatTest, DecompositionOfZeroAndBeyondItsBuffer)
{
    WString digits;
    int point = 7;
    int sign = 7;
    MyEcvt(digits, 0.0, 4, &point, &sign);
    EXPECT_EQ(WString::Format(L"%s %d %d", digits, point, sign), L"0000 0 0");
    EXPECT_EQ(ThrownBy([&] { MyEcvt(digits, 1.5, 100, &point, &sign); }), "exit code 0:200:75");
}

TEST(NumberFormatTest, ADecimalCommaOfTheLocaleChangesNothing)
{
    const DecimalCommaLocale locale;
    CheckExpressions({
        {"FmtEng(32463, 3, true)", "'32.5e3'"},
        {"-0.00025", "-2.5e-4"},
        {"Round(1234567.891, 2)", "'1234567.89'"},
        {"\"1.5\"+0", "1.5"},
        {"\"1,5\"+0", "4 Type mismatch @1"},
    });
}

TEST(DateFunctionsTest, WhatIsNoNumberIsDayZero)
{
    EXPECT_EQ(DaysToDate(notANumber), 18991230);
    EXPECT_EQ(ThrownBy([] { DateToDays(notANumber); }), "146 Invalid date: 0 @-1");
}
