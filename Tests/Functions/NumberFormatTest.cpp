#include "NumberFormat.h"
#include "EETokenStack.h"
#include "ExpressionEvaluatorFunctionClasses.h"
#include "Support/DecimalCommaLocale.h"
#include "Support/ThrownError.h"
#include "Support/Tokens.h"

#include <bit>
#include <cmath>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace {
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double largest = std::numeric_limits<double>::max();
constexpr double smallest = std::numeric_limits<double>::denorm_min();

template <typename Formatter, typename... More>
std::string Text(Formatter formatter, double value, short digits, More... more)
{
    wchar_t text[numberTextSize];
    return WString(formatter(value, digits, text, more...)).ToUtf8();
}

/// The text that the function answers at the position of its call, or its error. The arguments stand at 11, 12, ...
template <typename Function, typename... Values>
std::string Call(Values... values)
{
    EETokenStack arguments;
    int position = 10;
    (arguments.Put(Operand(values, ++position)), ...);
    EEToken result;
    result.SetPosition(4);
    std::string error = ThrownBy([&] { Function(L"f", sizeof...(values)).Evaluate(result, arguments); });
    if (error != "nothing")
        return error;
    return result.GetWString(false).ToUtf8() + WString::Format(L" @%d", result.GetPosition()).ToUtf8();
}
} // namespace

TEST(NumberFormatTest, Forms)
{
    struct Case
    {
        double value;
        short digits;
        const char* texts; // Fcvt, Ftoa, FmtEng with and without ending zeros
    };
    const Case cases[] = {
        {1, 3, "1.00 1 1.00 1"},
        {-2.5, 3, "-2.50 -2.5 -2.50 -2.5"},
        {1.2, 6, "1.20000 1.2 1.20000 1.2"},
        {3.2463, 3, "3.25 3.25 3.25 3.25"},
        {100, 3, "100 100 100 100"},
        {32463, 6, "32463.0 32463 32463.0 32463"},
        {32463, 3, "3.25e4 3.25e4 32.5e3 32.5e3"},
        {-30000, 3, "-3.00e4 -3e4 -30.0e3 -30e3"},
        {300000, 3, "3.00e5 3e5 300e3 300e3"},
        {1e6, 3, "1.00e6 1e6 1.00e6 1e6"},
        {0.5, 3, "0.500 0.5 500e-3 500e-3"},
        {0.032463, 3, "0.0325 0.0325 32.5e-3 32.5e-3"},
        {0.01, 3, "0.0100 0.01 10.0e-3 10e-3"},
        {0.001, 3, "1.00e-3 1e-3 1.00e-3 1e-3"},
        {0.00032463, 3, "3.25e-4 3.25e-4 325e-6 325e-6"},
        {0, 3, "0.00 0 0.00 0"},
        {-0.0, 3, "-0.00 -0 -0.00 -0"},
        // two digits cannot hold three before the point
        {0.5, 2, "0.50 0.5 0.50 0.5"},
        {100, 2, "1.0e2 1e2 0.10e3 0.1e3"},
        {320000, 2, "3.2e5 3.2e5 0.32e6 0.32e6"},
        {32000, 2, "3.2e4 3.2e4 32e3 32e3"},
        {0.0003, 2, "3.0e-4 3e-4 0.30e-3 0.3e-3"},
        {0.0032, 2, "3.2e-3 3.2e-3 3.2e-3 3.2e-3"},
        {0.032, 2, "0.032 0.032 32e-3 32e-3"},
        // a carry moves the point
        {9.999, 3, "10.0 10 10.0 10"},
        {0.99999, 3, "1.00 1 1.00 1"},
        {0.0099999, 3, "0.0100 0.01 10.0e-3 10e-3"},
        {999.6, 3, "1.00e3 1e3 1.00e3 1e3"},
        // exactly rounded; what lies half-way goes to the even digit
        {0.125, 2, "0.12 0.12 0.12 0.12"},
        {0.375, 2, "0.38 0.38 0.38 0.38"},
        {2.675, 3, "2.67 2.67 2.67 2.67"},
        {largest, 4, "1.798e308 1.798e308 179.8e306 179.8e306"},
        {1e-320, 15, "9.99988867182683e-321 9.99988867182683e-321 9.99988867182683e-321 9.99988867182683e-321"},
        {smallest, 3, "4.94e-324 4.94e-324 4.94e-324 4.94e-324"},
        {infinity, 3, "inf inf inf inf"},
        {-infinity, 3, "-inf -inf -inf -inf"},
        {-notANumber, 3, "nan nan nan nan"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(Text(efFcvt, c.value, c.digits) + " " + Text(efFtoa, c.value, c.digits) + " " +
                Text(efFmtEng, c.value, c.digits, false) + " " + Text(efFmtEng, c.value, c.digits, true),
            c.texts);
    }
}

TEST(NumberFormatTest, ComputedNumbersHaveFifteenDigits)
{
    EXPECT_EQ(DoubleToString(3.14159265358979323846), L"3.14159265358979");
    EXPECT_EQ(DoubleToString(0.1 + 0.2), L"0.3");
    EXPECT_EQ(DoubleToString(1e20), L"1e20");
    EXPECT_EQ(DoubleToString(123456789012345), L"123456789012345");
    EXPECT_EQ(DoubleToString(1234567890123456), L"1.23456789012346e15");
    EXPECT_EQ(DoubleToString(999999999999999.9), L"1e15");
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

TEST(NumberFormatTest, TheNudgeIsUpwardAndFarBehindTheDigits)
{
    EXPECT_EQ(efAdjustDblForDisplay(0, 2), 0);
    EXPECT_EQ(efAdjustDblForDisplay(2.675, 2), 2.675 + 1e-15);
    EXPECT_EQ(efAdjustDblForDisplay(-2.675, 2), -2.675 + 1e-15);
    EXPECT_EQ(efAdjustDblForDisplay(0.3, 15), 0.3 + 1e-16);
    EXPECT_EQ(efAdjustDblForDisplay(1.5, 14), 1.5 + 1e-15);
    EXPECT_EQ(efAdjustDblForDisplay(1.5, 15), 1.5); // no room behind 16 digits
    EXPECT_EQ(efAdjustDblForDisplay(smallest, 15), smallest);
    EXPECT_EQ(efAdjustDblForDisplay(infinity, 2), infinity);
    EXPECT_TRUE(std::isnan(efAdjustDblForDisplay(notANumber, 2)));
}

TEST(FormatFunctionsTest, TextsStandAtTheCall)
{
    EXPECT_EQ(Call<EEFcvt>(1.2, 3.0), "1.20 @4");
    EXPECT_EQ(Call<EEFtoa>(1.2, 3.9), "1.2 @4");
    EXPECT_EQ(Call<EEFtoa>(1.0 / 3, 15.0), "0.333333333333333 @4");
    EXPECT_EQ(Call<EEFmtEng>(1.2, 6.0, false), "1.20000 @4");
    EXPECT_EQ(Call<EEFmtEng>(1.2, 6.0, true), "1.2 @4");
}

TEST(FormatFunctionsTest, RoundsToDecimals)
{
    EXPECT_EQ(Call<EERound>(3.1415926, 2.0), "3.14 @4");
    EXPECT_EQ(Call<EERound>(3.14, 0.0), "3 @4");
    EXPECT_EQ(Call<EERound>(2.5, 0.0), "3 @4");
    EXPECT_EQ(Call<EERound>(0.5, 0.0), "1 @4");
    EXPECT_EQ(Call<EERound>(1.005, 2.9), "1.01 @4");
    EXPECT_EQ(Call<EERound>(-2.5, 0.0), "-2 @4");
    EXPECT_EQ(Call<EERound>(-0.2, 0.0), "-0 @4");
    EXPECT_EQ(Call<EERound>(9.999, 2.0), "10.00 @4");
    EXPECT_EQ(Call<EERound>(smallest, 15.0), "0.000000000000000 @4");

    char expected[400];
    std::snprintf(expected, sizeof expected, "%.2f @4", 1e300);
    EXPECT_EQ(Call<EERound>(1e300, 2.0), expected);
    std::snprintf(expected, sizeof expected, "%.15f @4", -largest);
    EXPECT_EQ(Call<EERound>(-largest, 15.0), expected);
}

TEST(FormatFunctionsTest, CountsOutOfRangeAreErrorsAtTheCount)
{
    for (const double digits : {1.0, 1.999, 15.001, 16.0, -3.0, 1e300, -1e300}) {
        EXPECT_EQ(Call<EEFtoa>(1.0, digits), "104 Ftoa invalid number of digits @12") << digits;
        EXPECT_EQ(Call<EEFcvt>(1.0, digits), "106 Fcvt invalid number of digits @12") << digits;
        EXPECT_EQ(Call<EEFmtEng>(1.0, digits, true), "108 FmtEng invalid number of digits @12") << digits;
    }
    for (const double decimals : {-0.001, -1.0, 15.001, 16.0, 1e300})
        EXPECT_EQ(Call<EERound>(1.0, decimals), "110 Round, invalid number of decimals @12") << decimals;
}

TEST(FormatFunctionsTest, ArgumentsAreReadFromLeftToRight)
{
    EXPECT_EQ(Call<EEFtoa>(true, true), "143 Boolean is not a number @11");
    EXPECT_EQ(Call<EERound>(1.0, true), "143 Boolean is not a number @12");
    EXPECT_EQ(Call<EEFcvt>(notANumber, 1.0), "150 Not a number @-1");
    EXPECT_EQ(Call<EEFmtEng>(1.0, 99.0, 1.0), "6 Type mismatch @13"); // the boolean comes before the range
    EXPECT_EQ(Call<EERound>(infinity, 2.0), "149 Number is infinite @-1");
}

TEST(FormatFunctionsTest, ADecimalCommaOfTheLocaleChangesNothing)
{
    const DecimalCommaLocale locale;
    EXPECT_EQ(Text(efFcvt, 1234.5, 6), "1234.50");
    EXPECT_EQ(Text(efFmtEng, 32463, 3, true), "32.5e3");
    EXPECT_EQ(DoubleToString(-0.00025), L"-2.5e-4");
    EXPECT_EQ(Call<EERound>(1234567.891, 2.0), "1234567.89 @4");
    EXPECT_EQ(Operand(L"1.5").GetNumber(), 1.5);
    EXPECT_EQ(ThrownBy([] { Operand(L"1,5").GetNumber(); }), "4 Type mismatch @7");
}

TEST(DateFunctionsTest, DaysCountFromTheEndOf1899)
{
    struct Case
    {
        double date;
        double days;
    };
    const Case cases[] = {
        {18991229, -1},
        {18991230, 0},
        {19000101, 2},
        {19000301, 61},
        {20000229, 36585},
        {16010101, -109205},
        {99991231, 2958465},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(DateToDays(c.date), c.days);
        EXPECT_EQ(DateToDays(c.date + 0.9), c.days);
        EXPECT_EQ(DaysToDate(c.days), c.date);
    }
    EXPECT_EQ(DaysToDate(2.9), 19000101);
    EXPECT_EQ(DaysToDate(-0.9), 18991230);
    EXPECT_EQ(DaysToDate(notANumber), 18991230);
}

TEST(DateFunctionsTest, WhatIsNoDateIsAnErrorWithoutAPosition)
{
    EXPECT_EQ(ThrownBy([] { DateToDays(20230231); }), "146 Invalid date: 20230231 @-1");
    EXPECT_EQ(ThrownBy([] { DateToDays(0); }), "146 Invalid date: 0 @-1");
    EXPECT_EQ(ThrownBy([] { DateToDays(-20230101.5); }), "146 Invalid date: -20230101 @-1");
    EXPECT_EQ(ThrownBy([] { DateToDays(1e300); }), "146 Invalid date: 2147483647 @-1");
    EXPECT_EQ(ThrownBy([] { DateToDays(notANumber); }), "146 Invalid date: 0 @-1");
    EXPECT_EQ(ThrownBy([] { DaysToDate(-109206); }), "147 Invalid days value: -109206 @-1");
    EXPECT_EQ(ThrownBy([] { DaysToDate(2958466); }), "147 Invalid days value: 2958466 @-1");
    EXPECT_EQ(ThrownBy([] { DaysToDate(-infinity); }), "147 Invalid days value: -2147483648 @-1");
}
