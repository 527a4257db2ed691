// The functions that look at nothing but their arguments, beyond the examples of their help.

#include "SelfTestParts.h"

namespace {
using SelfTest::Row;

constexpr Row logic_lc[] = {
    {"IF(true, 1.50, 2)", "1.50"},
    {"if(1>2, 1, \"no\")", "'no'"},
    {"IF(false, kaka, 1/0)", "133 Divide by zero @19"},
    {"IF(true, kaka, 2)", "48 kaka @10"},
    {"IF(1, 2, 3)", "6 Type mismatch @4"},
    {"IF(missing, 2, 3)", "48 Missing variable: missing @4"},
    {"Not(\"FALSE\")", "6 Type mismatch @5"},
    {"IsNA(missing+2)", "TRUE"},
    {"IsNA(\"\")", "FALSE"},
    {"IsErr(\"x\")", "FALSE"},
    {"Defined(missing*2)", "FALSE"},
    {"Defined(false)", "TRUE"},
    {"Defined(1/0)", "133 Divide by zero @11"},
    {"InitIfNa(2.50, 0)", "2.50"},
    {"InitIfNa(test, other)", "48 other @16"},
    {"Bool(true)", "TRUE"},
    {"Bool(2.220e-13)", "FALSE"},
    {"Bool(2.2204460492503131e-13)", "TRUE"},
    {"Bool(-2.221e-13)", "TRUE"},
    {"Bool(0x10)", "112 Value cannot be converted to a boolean @6"},
    {"Bool(missing)", "48 Missing variable: missing @6"},
};

constexpr Row statistics_lc[] = {
    {"Max(-3, -2)", "-2"},
    {"Min(102,55,11,99,33)", "11"},
    {"Average(1, 2, 6)", "3"},
    {"Med(102,55,11,65,99,33)", "60"},
    {"Median(7)", "7"},
    {"Max(1, \"x\", kaka)", "4 Type mismatch @8"},
    {"Min(1, kaka)", "48 Missing variable: kaka @8"},
    {"Avg(true)", "143 Boolean is not a number @5"},
    {"Med(exp(1000))", "149 Number is infinite @4"},
    {"Mod(100, 7)", "2"},
    {"Mod(7, -3)", "1"},
    {"Mod(-2147483648, -1)", "0"},
    {"Mod(1e300, 10)", "7"},
    {"Mod(-3000000000, 10)", "-8"},
    {"Mod(100, 0.9)", "154 Modulus by zero @10"},
    {"StDev(1, 2)", "0.707106781186548"},
    {"Sd(1, 2, 3, 4)", "1.29099444873581"},
    {"Sd(2, 2)", "0"},
    {"StDev(1)", "151 Missing parameter @7"},
    {"Slope(1, 3, 2, 1, 3, 2, 4, 6)", "1"},
    {"Icpt(1, 3, 2, 1, 3, 2, 4, 6)", "0.5"},
    {"Slope(1, 2, 2, 4)", "2"},
    {"Slope(1, 0, 1, 2)", "nan"},
    {"Slope(1, 2)", "102 Missing parameter @10"},
    {"Slope(1, 2, 3, 4, 5)", "102 Missing parameter @19"},
    {"Intercept(1, 2)", "101 Missing parameter @14"},
    {"Rand(1)", "27 Rand() requires a min and a max parameter + optionally a skip parameter @6"},
    {"Random(1, 2, 3, 4)", "27 Rand() requires a min and a max parameter + optionally a skip parameter @17"},
    {"Rand(5, 5.9)", "510 Rand(min, max) used with same value for min and max parameter @9"},
    {"Rand(2, 1, 2)", "1"},
    {"Rand(1, false)", "143 Boolean is not a number @9"},
    {"sign(-0.1)", "-1"},
    {"sign(5)", "1"},
    {"int(-2.7)", "-2"},
    {"floor(-2.7) & ceil(-2.7)", "'-3-2'"},
    {"log(\"x\")", "4 Type mismatch @5"},
    {"tan(1)", "1.5574077246549"},
    {"sqr(2)", "1.4142135623731"},
    {"atan(-1)", "-0.785398163397448"},
    {"sinh(2) & \" \" & cosh(2)", "'3.62686040784702 3.76219569108363'"},
    {"asin(0.5) & \" \" & acos(0.5)", "'0.523598775598299 1.0471975511966'"},
};

constexpr Row texts_lc[] = {
    {"Len(0.5*2)", "1"},
    {"Left(12.50, 4)", "'12.5'"},
    {"Left(\"uv\", -1)", "''"},
    {"Left(\"uv\", 1e300)", "'uv'"},
    {"Right(\"uvwxyz\", \"2\")", "'yz'"},
    {"Right(true, 3)", "'RUE'"},
    {"Left(\"uv\", true)", "143 Boolean is not a number @12"},
    {"Mid(\"uvwxyz\", -3, 2)", "'uv'"},
    {"Mid(\"uvwxyz\", 1, -5)", "'vwxyz'"},
    {"Mid(\"uvwxyz\", 1, 0)", "''"},
    {"Mid(\"xyz\", 3)", "''"},
    {"Mid(\"xyz\", 4)", "148 Character index out of range @12"},
    {"Mid(\"xyz\")", "122 Mid/Substring requires 2 or 3 parameters @5"},
    {"SubString(\"xyz\", 1, 2, 3)", "122 Mid/Substring requires 2 or 3 parameters @24"},
    {"InStr(\"abcabc\", \"C\")", "2"},
    {"InStr(3, \"abcabc\", \"C\")", "5"},
    {"InStr(-5, \"abc\", \"a\")", "0"},
    {"IndexOf(\"abc\")", "134 Missing parameter @9"},
    {"InStr(1, \"abc\", \"a\", 2)", "135 Too many parameters @22"},
    {"StartsWith(\"File.TXT\", \"file\", false)", "FALSE"},
    {"StartsWith(\"x\")", "141 StartsWith requires 2 or 3 parameters @12"},
    {"StartsWith(\"x\", \"y\", true, 1)", "141 StartsWith requires 2 or 3 parameters @28"},
    {"StartsWith(\"x\", \"y\", 1)", "6 Type mismatch @22"},
    {"EndsWith(\"x\")", "142 EndsWith requires 2 or 3 parameters @10"},
    {"EndsWith(\"x\", \"y\", true, 1)", "142 EndsWith requires 2 or 3 parameters @26"},
    {"Matches(\"abcbcd\", \"a*b?d\")", "TRUE"},
    {"Matches(\"1\", 1)", "8 Type mismatch @14"},
    {"UCase(\"Ab1 \u00E9\") & LCase(true)", "'AB1 \u00C9true'"},
    {"CStr(exp(1000))", "'inf'"},
    {"CStr(1/0)", "133 Divide by zero @8"},
    {"1+Val(\"xyz\")", "111 Val, cannot convert to number @6"},
    {"Val(true)+Val(\"1F\")+Val(1.50)", "33.5"},
    {"StrCat(kaka, 1)", "48 Missing variable: kaka @8"},
    {"StrReplace(\"aaa\", \"aa\", \"b\")", "'ba'"},
    {"StrReplace(\"a\", \"b\")", "27 StrReplace requires at least 3 parameters @17"},
    {"StrReplace(\"a\", \"b\", \"c\", true, 1)", "25 StrReplace does not support more than 4 parameters @33"},
    {"ToHex(4294967295, 2)", "'ffffffff'"},
    {"ToHex(0, 8)", "'00000000'"},
    {"ToHex(10.9, 2)", "'0a'"},
    {"ToHex(0)", "'0'"},
    {"ToHex(-1)", "50 Argument value out of range @7"},
    {"ToHex(4294967296)", "50 Argument value out of range @7"},
    {"ToHex(255, 9)", "50 Argument value out of range @12"},
    {"ToHex(255, 1)", "50 Argument value out of range @12"},
    {"ToHex(1, 2, 3)", "155 ToHext requires 1 or 2 parameters @13"},
    {"FromHex(\"FFFFFFFF\")", "4294967295"},
    {"FromHex(\"0\")", "0"},
    {"Val(\"0x0\")", "0"},
    {"FromHex(\"100000000\")", "50 Invalid hexadecimal value @9"},
    {"FromHex(10)", "8 Type mismatch @9"},
    {"VersionCompare(1.10, 1.9)", "1"},
    {"VersionCompare(\"1.2\", \"1.2.0.0\")", "0"},
    {"VersionCompare(\"x\", kaka)", "511 Invalid version number @16"},
    {"VersionCompare(\"1\", \"\")", "511 Invalid version number @21"},
    {"5/VersionCompare(\"1\", \"1\")", "133 Divide by zero @18"},
    {"ListLen(\",,\")", "3"},
    {"ListLen(\"A,B\", \";;\")", "157 ListLen separator is more than one character long @16"},
    {"ListLen(\"A\", \",\", 1)", "25 ListLen too many parameters specified @19"},
    {"ListLen(12)", "8 Type mismatch @9"},
    {"ListItem(\"A, B ,C\", \"2\")", "' B '"},
    {"ListItem(\"A,B\", 0)", "50 Argument value out of range @17"},
    {"ListItem(\"A,B\", 3e9)", "50 Argument value out of range @17"},
    {"ListItem(\"A,B\", 3)", "153 The requested ListItem was not found @17"},
    {"ListItem(\"A,B\", 3, \"\")", "152 ListItem separator is invalid @20"},
    {"ListItem(\"A,B\")", "27 ListItem requires 2 - 3 parameters @10"},
    {"ListItem(\"A\", 1, \",\", 2)", "25 ListItem requires 2 - 3 parameters @23"},
    {"IsInList(\"b+\", \"A,B+,C\")", "TRUE"},
    {"IsInList(\"b\", \"A,B\", false)", "FALSE"},
    {"IsInList(\"B\", \"A;B;C\", true, \";\")", "TRUE"},
    {"IsInList(\"\", \"A,,B\")", "TRUE"},
    {"IsInList(\"B\", \"AB,BA\")", "FALSE"},
    {"IsInList(\"A\", \"A\", true, \";;\")", "158 IsInList separator is more than one character long @26"},
    {"IsInList(\"A\")", "27 IsInList requires 2 - 4 arguments @10"},
    {"IsInList(\"A\", \"A\", true, \",\", 5)", "25 IsInList too many arguments @31"},
};

constexpr Row dates_lc[] = {
    {"DateToDays(18991229.9)", "-1"},
    {"DateToDays(18991230)", "0"},
    {"DateToDays(20000229)", "36585"},
    {"DateToDays(16010101)", "-109205"},
    {"DateToDays(99991231)", "2958465"},
    {"DaysToDate(-109205)", "16010101"},
    {"DaysToDate(-0.9)", "18991230"},
    {"DaysToDate(2958465)", "99991231"},
    {"DateToDays(0)", "146 Invalid date: 0 @11"},
    {"DateToDays(1e300)", "146 Invalid date: 2147483647 @11"},
    {"DaysToDate(-109206)", "147 Invalid days value: -109206 @11"},
    {"DaysToDate(2958466)", "147 Invalid days value: 2958466 @11"},
    {"DaysToDate(-1e300)", "147 Invalid days value: -2147483648 @11"},
};

constexpr Row roundings_lc[] = {
    {"Round(2.5, 0)", "'3'"},
    {"Round(0, 2)", "'0.00'"},
    {"Round(1.005, 2.9)", "'1.01'"},
    {"Round(-2.675, 2)", "'-2.67'"},
    {"Round(0.4949999999999995, 2)", "'0.49'"},
    {"Round(0.1, 15)", "'0.100000000000000'"},
    {"Round(0.1000000000000075, 15)", "'0.100000000000008'"},
    {"Round(1.5, 15)", "'1.500000000000000'"},
    {"Round(9.999, 2)", "'10.00'"},
    {"Len(Round(-1.7976931348623157e308, 15))", "326"},
    {"Round(1, -0.001)", "110 Round, invalid number of decimals @10"},
    {"Round(1, 15.001)", "110 Round, invalid number of decimals @10"},
    {"Round(exp(1000), 2)", "149 Number is infinite @6"},
    {"Fcvt(1, 1.999)", "106 Fcvt invalid number of digits @9"},
    {"Fcvt(1, 15.001)", "106 Fcvt invalid number of digits @9"},
    {"Ftoa(1, 1.999)", "104 Ftoa invalid number of digits @9"},
    {"Ftoa(1, 16)", "104 Ftoa invalid number of digits @9"},
    {"FmtEng(1, 1, true)", "108 FmtEng invalid number of digits @11"},
    {"FmtEng(1, 15.001, true)", "108 FmtEng invalid number of digits @11"},
    {"FmtEng(1, 99, 1)", "6 Type mismatch @15"},
    {"5/Ftoa(0, 3.9)", "133 Divide by zero @7"},
    // computed numbers have fifteen digits
    {"1/3", "0.333333333333333"},
    {"0.1+0.2", "0.3"},
    {"1e20+0", "1e20"},
    {"123456789012345+0", "123456789012345"},
    {"1234567890123456+0", "1.23456789012346e15"},
    {"999999999999999.9+0", "1e15"},
    {"1/128", "7.8125e-3"},
    {"1/64", "0.015625"},
};

/// A number with a count of digits, as Fcvt, Ftoa and FmtEng without and with removed zeros write it.
constexpr Row formats_lc[] = {
    {"1, 3", "1.00 1 1.00 1"},
    {"-2.5, 3", "-2.50 -2.5 -2.50 -2.5"},
    {"100, 3", "100 100 100 100"},
    {"32463, 6", "32463.0 32463 32463.0 32463"},
    {"32463, 3", "3.25e4 3.25e4 32.5e3 32.5e3"},
    {"300000, 3", "3.00e5 3e5 300e3 300e3"},
    {"1e6, 3", "1.00e6 1e6 1.00e6 1e6"},
    {"0.5, 3", "0.500 0.5 500e-3 500e-3"},
    {"0.1, 3", "0.100 0.1 100e-3 100e-3"},
    {"0.032463, 3", "0.0325 0.0325 32.5e-3 32.5e-3"},
    {"0.001, 3", "1.00e-3 1e-3 1.00e-3 1e-3"},
    {"0.00032463, 3", "3.25e-4 3.25e-4 325e-6 325e-6"},
    {"0, 3", "0.00 0 0.00 0"},
    {"-0.0, 3", "-0.00 -0 -0.00 -0"},
    {"0.5, 2", "0.50 0.5 0.50 0.5"},
    {"100, 2", "1.0e2 1e2 0.10e3 0.1e3"},
    {"320000, 2", "3.2e5 3.2e5 0.32e6 0.32e6"},
    {"32000, 2", "3.2e4 3.2e4 32e3 32e3"},
    {"0.0003, 2", "3.0e-4 3e-4 0.30e-3 0.3e-3"},
    {"0.0032, 2", "3.2e-3 3.2e-3 3.2e-3 3.2e-3"},
    {"0.032, 2", "0.032 0.032 32e-3 32e-3"},
    {"9.999, 3", "10.0 10 10.0 10"},
    {"999.6, 3", "1.00e3 1e3 1.00e3 1e3"},
    {"0.0099999, 3", "0.0100 0.01 10.0e-3 10e-3"},
    {"2.675, 3", "2.67 2.67 2.67 2.67"},
    {"1.7976931348623157e308, 4", "1.798e308 1.798e308 179.8e306 179.8e306"},
    {"4.9406564584124654e-324, 15",
        "4.94065645841247e-324 4.94065645841247e-324 4.94065645841247e-324 4.94065645841247e-324"},
};

void TestFormats(TestCommand& test)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    for (const Row& row : formats_lc) {
        const WString given = WString::FromUtf8(row.input);
        const WString all =
            WString::Format(L"Fcvt(%s) & \" \" & Ftoa(%s) & \" \" & FmtEng(%s, false) & \" \" & FmtEng(%s, true)",
                given, given, given, given);
        Assertion::AreEqual(test, WString::FromUtf8(row.outcome), evaluator.EvaluateString(all), given);
    }
}

/// What is drawn lies within its limits, both included, is never what is rejected, and is not always the same.
void TestRandomFunctions(TestCommand& test)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    int counts[4] = {};
    bool inRange = true;
    for (int i = 0; i < 200; ++i) {
        const int drawn = evaluator.EvaluateInt(L"Rand(3, 0, 1)");
        inRange = inRange && drawn >= 0 && drawn <= 3;
        if (inRange)
            ++counts[drawn];
    }
    const bool allDrawn = counts[0] > 0 && counts[1] == 0 && counts[2] > 0 && counts[3] > 0;
    Assertion::IsTrue(test, inRange && allDrawn, L"Rand draws every number from 0 to 3 but 1");
    Assertion::IsTrue(
        test, evaluator.EvaluateDouble(L"RND") != evaluator.EvaluateDouble(L"RND"), L"RND gives the same number twice");
}
} // namespace

void SelfTest::TestFunctions(TestCommand& test)
{
    CheckRows(test, logic_lc);
    CheckRows(test, statistics_lc);
    CheckRows(test, texts_lc);
    CheckRows(test, dates_lc);
    CheckRows(test, roundings_lc);
    TestFormats(test);
    TestRandomFunctions(test);
}
