// The functions that look at nothing but their arguments, beyond the examples of their help.

#include "SelfTestParts.h"

namespace {
using SelfTest::Row;

constexpr Row logic_lc[] = {
    {L"IF(true, 1.50, 2)", L"1.50"},
    {L"if(1>2, 1, \"no\")", L"'no'"},
    {L"IF(false, kaka, 1/0)", L"133 Divide by zero @19"},
    {L"IF(true, kaka, 2)", L"48 kaka @10"},
    {L"IF(1, 2, 3)", L"6 Type mismatch @4"},
    {L"IF(missing, 2, 3)", L"48 Missing variable: missing @4"},
    {L"Not(\"FALSE\")", L"6 Type mismatch @5"},
    {L"IsNA(missing+2)", L"TRUE"},
    {L"IsNA(\"\")", L"FALSE"},
    {L"IsErr(\"x\")", L"FALSE"},
    {L"Defined(missing*2)", L"FALSE"},
    {L"Defined(false)", L"TRUE"},
    {L"Defined(1/0)", L"133 Divide by zero @11"},
    {L"InitIfNa(2.50, 0)", L"2.50"},
    {L"InitIfNa(test, other)", L"48 other @16"},
    {L"Bool(true)", L"TRUE"},
    {L"Bool(2.220e-13)", L"FALSE"},
    {L"Bool(-2.221e-13)", L"TRUE"},
    {L"Bool(0x10)", L"112 Value cannot be converted to a boolean @6"},
    {L"Bool(missing)", L"48 Missing variable: missing @6"},
};

constexpr Row statistics_lc[] = {
    {L"Max(-3, -2)", L"-2"},
    {L"Min(102,55,11,99,33)", L"11"},
    {L"Average(1, 2, 6)", L"3"},
    {L"Med(102,55,11,65,99,33)", L"60"},
    {L"Median(7)", L"7"},
    {L"Max(1, \"x\", kaka)", L"4 Type mismatch @8"},
    {L"Min(1, kaka)", L"48 Missing variable: kaka @8"},
    {L"Avg(true)", L"143 Boolean is not a number @5"},
    {L"Med(exp(1000))", L"149 Number is infinite @4"},
    {L"Mod(100, 7)", L"2"},
    {L"Mod(7, -3)", L"1"},
    {L"Mod(-2147483648, -1)", L"0"},
    {L"Mod(1e300, 10)", L"7"},
    {L"Mod(-3000000000, 10)", L"-8"},
    {L"Mod(100, 0.9)", L"154 Modulus by zero @10"},
    {L"StDev(1, 2)", L"0.707106781186548"},
    {L"Sd(1, 2, 3, 4)", L"1.29099444873581"},
    {L"Sd(2, 2)", L"0"},
    {L"StDev(1)", L"151 Missing parameter @7"},
    {L"Slope(1, 3, 2, 1, 3, 2, 4, 6)", L"1"},
    {L"Icpt(1, 3, 2, 1, 3, 2, 4, 6)", L"0.5"},
    {L"Slope(1, 2, 2, 4)", L"2"},
    {L"Slope(1, 0, 1, 2)", L"nan"},
    {L"Slope(1, 2)", L"102 Missing parameter @10"},
    {L"Slope(1, 2, 3, 4, 5)", L"102 Missing parameter @19"},
    {L"Intercept(1, 2)", L"101 Missing parameter @14"},
    {L"Rand(1)", L"27 Rand() requires a min and a max parameter + optionally a skip parameter @6"},
    {L"Random(1, 2, 3, 4)", L"27 Rand() requires a min and a max parameter + optionally a skip parameter @17"},
    {L"Rand(5, 5.9)", L"510 Rand(min, max) used with same value for min and max parameter @9"},
    {L"Rand(2, 1, 2)", L"1"},
    {L"Rand(1, false)", L"143 Boolean is not a number @9"},
    {L"sign(-0.1)", L"-1"},
    {L"sign(5)", L"1"},
    {L"int(-2.7)", L"-2"},
    {L"floor(-2.7) & ceil(-2.7)", L"'-3-2'"},
    {L"log(\"x\")", L"4 Type mismatch @5"},
    {L"tan(1)", L"1.5574077246549"},
    {L"sqr(2)", L"1.4142135623731"},
    {L"atan(-1)", L"-0.785398163397448"},
    {L"sinh(2) & \" \" & cosh(2)", L"'3.62686040784702 3.76219569108363'"},
    {L"asin(0.5) & \" \" & acos(0.5)", L"'0.523598775598299 1.0471975511966'"},
};

constexpr Row texts_lc[] = {
    {L"Len(0.5*2)", L"1"},
    {L"Left(12.50, 4)", L"'12.5'"},
    {L"Left(\"uv\", -1)", L"''"},
    {L"Left(\"uv\", 1e300)", L"'uv'"},
    {L"Right(\"uvwxyz\", \"2\")", L"'yz'"},
    {L"Right(true, 3)", L"'RUE'"},
    {L"Left(\"uv\", true)", L"143 Boolean is not a number @12"},
    {L"Mid(\"uvwxyz\", -3, 2)", L"'uv'"},
    {L"Mid(\"uvwxyz\", 1, -5)", L"'vwxyz'"},
    {L"Mid(\"uvwxyz\", 1, 0)", L"''"},
    {L"Mid(\"xyz\", 3)", L"''"},
    {L"Mid(\"xyz\", 4)", L"148 Character index out of range @12"},
    {L"Mid(\"xyz\")", L"122 Mid/Substring requires 2 or 3 parameters @5"},
    {L"SubString(\"xyz\", 1, 2, 3)", L"122 Mid/Substring requires 2 or 3 parameters @24"},
    {L"InStr(\"abcabc\", \"C\")", L"2"},
    {L"InStr(3, \"abcabc\", \"C\")", L"5"},
    {L"InStr(-5, \"abc\", \"a\")", L"0"},
    {L"IndexOf(\"abc\")", L"134 Missing parameter @9"},
    {L"InStr(1, \"abc\", \"a\", 2)", L"135 Too many parameters @22"},
    {L"StartsWith(\"File.TXT\", \"file\", false)", L"FALSE"},
    {L"StartsWith(\"x\")", L"141 StartsWith requires 2 or 3 parameters @12"},
    {L"StartsWith(\"x\", \"y\", true, 1)", L"141 StartsWith requires 2 or 3 parameters @28"},
    {L"StartsWith(\"x\", \"y\", 1)", L"6 Type mismatch @22"},
    {L"EndsWith(\"x\")", L"142 EndsWith requires 2 or 3 parameters @10"},
    {L"EndsWith(\"x\", \"y\", true, 1)", L"142 EndsWith requires 2 or 3 parameters @26"},
    {L"Matches(\"abcbcd\", \"a*b?d\")", L"TRUE"},
    {L"Matches(\"1\", 1)", L"8 Type mismatch @14"},
    {L"UCase(\"Ab1 \u00E9\") & LCase(true)", L"'AB1 \u00C9true'"},
    {L"CStr(exp(1000))", L"'inf'"},
    {L"CStr(1/0)", L"133 Divide by zero @8"},
    {L"1+Val(\"xyz\")", L"111 Val, cannot convert to number @6"},
    {L"Val(true)+Val(\"1F\")+Val(1.50)", L"33.5"},
    {L"StrCat(kaka, 1)", L"48 Missing variable: kaka @8"},
    {L"StrReplace(\"aaa\", \"aa\", \"b\")", L"'ba'"},
    {L"StrReplace(\"a\", \"b\")", L"27 StrReplace requires at least 3 parameters @17"},
    {L"StrReplace(\"a\", \"b\", \"c\", true, 1)", L"25 StrReplace does not support more than 4 parameters @33"},
    {L"ToHex(4294967295, 2)", L"'ffffffff'"},
    {L"ToHex(0, 8)", L"'00000000'"},
    {L"ToHex(10.9, 2)", L"'0a'"},
    {L"ToHex(0)", L"'0'"},
    {L"ToHex(-1)", L"50 Argument value out of range @7"},
    {L"ToHex(4294967296)", L"50 Argument value out of range @7"},
    {L"ToHex(255, 9)", L"50 Argument value out of range @12"},
    {L"ToHex(255, 1)", L"50 Argument value out of range @12"},
    {L"ToHex(1, 2, 3)", L"155 ToHext requires 1 or 2 parameters @13"},
    {L"FromHex(\"FFFFFFFF\")", L"4294967295"},
    {L"FromHex(\"100000000\")", L"50 Invalid hexadecimal value @9"},
    {L"FromHex(10)", L"8 Type mismatch @9"},
    {L"VersionCompare(1.10, 1.9)", L"1"},
    {L"VersionCompare(\"1.2\", \"1.2.0.0\")", L"0"},
    {L"VersionCompare(\"x\", kaka)", L"511 Invalid version number @16"},
    {L"VersionCompare(\"1\", \"\")", L"511 Invalid version number @21"},
    {L"5/VersionCompare(\"1\", \"1\")", L"133 Divide by zero @18"},
    {L"ListLen(\",,\")", L"3"},
    {L"ListLen(\"A,B\", \";;\")", L"157 ListLen separator is more than one character long @16"},
    {L"ListLen(\"A\", \",\", 1)", L"25 ListLen too many parameters specified @19"},
    {L"ListLen(12)", L"8 Type mismatch @9"},
    {L"ListItem(\"A, B ,C\", \"2\")", L"' B '"},
    {L"ListItem(\"A,B\", 0)", L"50 Argument value out of range @17"},
    {L"ListItem(\"A,B\", 3e9)", L"50 Argument value out of range @17"},
    {L"ListItem(\"A,B\", 3)", L"153 The requested ListItem was not found @17"},
    {L"ListItem(\"A,B\", 3, \"\")", L"152 ListItem separator is invalid @20"},
    {L"ListItem(\"A,B\")", L"27 ListItem requires 2 - 3 parameters @10"},
    {L"ListItem(\"A\", 1, \",\", 2)", L"25 ListItem requires 2 - 3 parameters @23"},
    {L"IsInList(\"b+\", \"A,B+,C\")", L"TRUE"},
    {L"IsInList(\"b\", \"A,B\", false)", L"FALSE"},
    {L"IsInList(\"B\", \"A;B;C\", true, \";\")", L"TRUE"},
    {L"IsInList(\"\", \"A,,B\")", L"TRUE"},
    {L"IsInList(\"B\", \"AB,BA\")", L"FALSE"},
    {L"IsInList(\"A\", \"A\", true, \";;\")", L"158 IsInList separator is more than one character long @26"},
    {L"IsInList(\"A\")", L"27 IsInList requires 2 - 4 arguments @10"},
    {L"IsInList(\"A\", \"A\", true, \",\", 5)", L"25 IsInList too many arguments @31"},
};

constexpr Row dates_lc[] = {
    {L"DateToDays(18991229.9)", L"-1"},
    {L"DateToDays(18991230)", L"0"},
    {L"DateToDays(20000229)", L"36585"},
    {L"DateToDays(16010101)", L"-109205"},
    {L"DateToDays(99991231)", L"2958465"},
    {L"DaysToDate(-109205)", L"16010101"},
    {L"DaysToDate(-0.9)", L"18991230"},
    {L"DaysToDate(2958465)", L"99991231"},
    {L"DateToDays(0)", L"146 Invalid date: 0 @11"},
    {L"DateToDays(1e300)", L"146 Invalid date: 2147483647 @11"},
    {L"DaysToDate(-109206)", L"147 Invalid days value: -109206 @11"},
    {L"DaysToDate(2958466)", L"147 Invalid days value: 2958466 @11"},
    {L"DaysToDate(-1e300)", L"147 Invalid days value: -2147483648 @11"},
};

constexpr Row roundings_lc[] = {
    {L"Round(2.5, 0)", L"'3'"},
    {L"Round(0, 2)", L"'0.00'"},
    {L"Round(1.005, 2.9)", L"'1.01'"},
    {L"Round(-2.675, 2)", L"'-2.67'"},
    {L"Round(0.4949999999999995, 2)", L"'0.49'"},
    {L"Round(0.1, 15)", L"'0.100000000000000'"},
    {L"Round(0.1000000000000075, 15)", L"'0.100000000000008'"},
    {L"Round(1.5, 15)", L"'1.500000000000000'"},
    {L"Round(9.999, 2)", L"'10.00'"},
    {L"Len(Round(-1.7976931348623157e308, 15))", L"326"},
    {L"Round(1, -0.001)", L"110 Round, invalid number of decimals @10"},
    {L"Round(1, 15.001)", L"110 Round, invalid number of decimals @10"},
    {L"Round(exp(1000), 2)", L"149 Number is infinite @6"},
    {L"Fcvt(1, 1.999)", L"106 Fcvt invalid number of digits @9"},
    {L"Fcvt(1, 15.001)", L"106 Fcvt invalid number of digits @9"},
    {L"Ftoa(1, 1.999)", L"104 Ftoa invalid number of digits @9"},
    {L"Ftoa(1, 16)", L"104 Ftoa invalid number of digits @9"},
    {L"FmtEng(1, 1, true)", L"108 FmtEng invalid number of digits @11"},
    {L"FmtEng(1, 15.001, true)", L"108 FmtEng invalid number of digits @11"},
    {L"FmtEng(1, 99, 1)", L"6 Type mismatch @15"},
    {L"5/Ftoa(0, 3.9)", L"133 Divide by zero @7"},
    // computed numbers have fifteen digits
    {L"1/3", L"0.333333333333333"},
    {L"0.1+0.2", L"0.3"},
    {L"1e20+0", L"1e20"},
    {L"123456789012345+0", L"123456789012345"},
    {L"1234567890123456+0", L"1.23456789012346e15"},
    {L"999999999999999.9+0", L"1e15"},
    {L"1/128", L"7.8125e-3"},
    {L"1/64", L"0.015625"},
};

/// A number with a count of digits, as Fcvt, Ftoa and FmtEng without and with removed zeros write it.
constexpr Row formats_lc[] = {
    {L"1, 3", L"1.00 1 1.00 1"},
    {L"-2.5, 3", L"-2.50 -2.5 -2.50 -2.5"},
    {L"100, 3", L"100 100 100 100"},
    {L"32463, 6", L"32463.0 32463 32463.0 32463"},
    {L"32463, 3", L"3.25e4 3.25e4 32.5e3 32.5e3"},
    {L"300000, 3", L"3.00e5 3e5 300e3 300e3"},
    {L"1e6, 3", L"1.00e6 1e6 1.00e6 1e6"},
    {L"0.5, 3", L"0.500 0.5 500e-3 500e-3"},
    {L"0.1, 3", L"0.100 0.1 100e-3 100e-3"},
    {L"0.032463, 3", L"0.0325 0.0325 32.5e-3 32.5e-3"},
    {L"0.001, 3", L"1.00e-3 1e-3 1.00e-3 1e-3"},
    {L"0.00032463, 3", L"3.25e-4 3.25e-4 325e-6 325e-6"},
    {L"0, 3", L"0.00 0 0.00 0"},
    {L"-0.0, 3", L"-0.00 -0 -0.00 -0"},
    {L"0.5, 2", L"0.50 0.5 0.50 0.5"},
    {L"100, 2", L"1.0e2 1e2 0.10e3 0.1e3"},
    {L"320000, 2", L"3.2e5 3.2e5 0.32e6 0.32e6"},
    {L"32000, 2", L"3.2e4 3.2e4 32e3 32e3"},
    {L"0.0003, 2", L"3.0e-4 3e-4 0.30e-3 0.3e-3"},
    {L"0.0032, 2", L"3.2e-3 3.2e-3 3.2e-3 3.2e-3"},
    {L"0.032, 2", L"0.032 0.032 32e-3 32e-3"},
    {L"9.999, 3", L"10.0 10 10.0 10"},
    {L"999.6, 3", L"1.00e3 1e3 1.00e3 1e3"},
    {L"0.0099999, 3", L"0.0100 0.01 10.0e-3 10e-3"},
    {L"2.675, 3", L"2.67 2.67 2.67 2.67"},
    {L"1.7976931348623157e308, 4", L"1.798e308 1.798e308 179.8e306 179.8e306"},
    {L"4.9406564584124654e-324, 15",
        L"4.94065645841247e-324 4.94065645841247e-324 4.94065645841247e-324 4.94065645841247e-324"},
};

void TestFormats(TestCommand& test)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    for (const Row& row : formats_lc) {
        const wchar_t* const given = row.input;
        const WString all =
            WString::Format(L"Fcvt(%s) & \" \" & Ftoa(%s) & \" \" & FmtEng(%s, false) & \" \" & FmtEng(%s, true)",
                given, given, given, given);
        Assertion::AreEqual(test, row.outcome, evaluator.EvaluateString(all), given);
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
