// Expressions without functions: reading, grammar, operators.

#include "SelfTestParts.h"

namespace {
using SelfTest::Row;

constexpr Row tokens_lc[] = {
    // numbers keep the form in which they were written
    {"1.50", "1.50"},
    {".5", ".5"},
    {"5.", "5."},
    {"2E-2", "2E-2"},
    {"0x1F", "0x1F"},
    {"0x1F+0", "31"},
    {"1.50+0", "1.5"},
    {"1e400+0", "149 Number is infinite @6"},
    {".", "37 Invalid number @0"},
    {"1+.a", "37 Invalid number @2"},
    {"12X5*2", "48 Missing variable: 12X5 @1"},
    {"9z+1", "48 Missing variable: 9z @1"},
    {"0+1", "1"},
    // texts
    {"\"\"", "''"},
    {"\"a\\\"b\\\\c\\n\"", "'a\"b\\c\\n'"},
    {"\"x", "36 Missing \", unexpected end of string @2"},
    {"\"x\\\"", "36 Missing \", unexpected end of string @4"},
    {"\"\u00E4\u20AC\" & 1", "'\u00E4\u20AC1'"},
    {"\"a\"\"b\"", "7 Operand not expected @6"},
    // blanks, and characters that begin nothing
    {" \t 5/0", "133 Divide by zero @6"},
    {"1 +\t2 => 3", "20 Expecting operand @8"},
    {"", "17 Operand Expected @0"},
    {"   ", "17 Operand Expected @3"},
    {"1\n", "38 Invalid character @2"},
    {"a#", "38 Invalid character @2"},
    {"[a]", "38 Invalid character @1"},
    {"1+/", "20 Expecting operand @3"},
    {"@", "38 Invalid character @1"},
    // built-in names
    {"True", "TRUE"},
    {"FALSE", "FALSE"},
    {"pi", "3.14159265358979"},
    {"E", "2.71828182845905"},
    {"LF", "'\n'"},
    {"rnd>=0 and RND<1", "TRUE"},
    {"Timer>=0", "TRUE"},
    {"Timer-Timer<=0", "TRUE"},
    // names and keywords
    {"kaka", "48 kaka @1"},
    {"10 + kaka", "48 Missing variable: kaka @6"},
    {"a.b_9+1", "48 Missing variable: a.b_9 @1"},
    {"true AND false", "FALSE"},
    {"true oR false", "TRUE"},
    {"true and\tfalse", "7 Operand not expected @8"},
    {"true and(false)", "22 Operand not expected @9"},
    {"or+1", "48 Missing variable: or @1"},
    {"true or", "7 Operand not expected @7"},
    {"an + 1", "48 Missing variable: an @1"},
    {"Foo(1)", "201 Unknown function: foo @1"},
    {"1+or(2)", "201 Unknown function: or @3"},
    {"max (1,2)", "18 Operator Expected @5"},
    // references whose form is wrong
    {"%x{a}", "41 Invalid instrument variable type @2"},
    {"1+%", "41 Invalid instrument variable type @4"},
    {"%S name", "42 Expecting a '{' character as the start of an instrument variable @3"},
    {"%u", "42 Expecting a '{' character as the start of an instrument variable @3"},
    {"%S{a", "43 Expecting a '}' character as delimiter of the instrument variable @4"},
    {"1+%E{PATH}", "49 Environment instrument variables not supported @4"},
    {"%C{SectionKey}", "46 Missing config section name, in %C{SectionKey} @4"},
    {"1+%C{[Section Key}", "45 Invalid config section name, missing ']', in name: %C{[Section Key} @6"},
};

constexpr Row grammar_lc[] = {
    {"1 2", "7 Operand not expected @3"},
    {"(1)2", "7 Operand not expected @4"},
    {"--1", "15 Two consecutive unary operators not allowed @2"},
    {"2*+-1", "15 Two consecutive unary operators not allowed @4"},
    {"&1", "16 Operand Expected @1"},
    {"1+&1", "16 Operand Expected @3"},
    {"1+", "17 Operand Expected @2"},
    {"-", "17 Operand Expected @1"},
    {"abs(,1)", "17 Operand Expected @5"},
    {"2(3)", "18 Operator Expected @2"},
    {")", "19 Operand Expected @1"},
    {"(1+)", "19 Operand Expected @4"},
    {"1+2/*3", "20 Expecting operand @5"},
    {"=1", "20 Expecting operand @1"},
    {"-*1", "20 Expecting operand @2"},
    {"2><3", "20 Expecting operand @3"},
    {"1 abs(2)", "22 Operand not expected @6"},
    {"(1+2", "24 Expected ')' @4"},
    {"((1)", "24 Expected ')' @4"},
    {"(1,2)", "24 Expected ')' @3"},
    {"mod(7,4,2,1)", "25 Too many parameters @8"},
    {"sqrt(4,2)", "26 Too many parameters @7"},
    {"mod(7)", "28 Missing parameter @6"},
    {"mod(7", "28 Missing parameter @5"},
    {"abs((1)", "30 Missing ')' @7"},
    {"Max(1,2", "30 Missing ')' @7"},
    {"1+2)", "32 Closing parenthesis without matching opening parenthesis @4"},
    {"1,2", "33 Parameter separator not allowed outside function call @2"},
    {"abs()", "145 Missing parameter @5"},
    {"Max(1,abs())", "145 Missing parameter @11"},
    {"1/0 + (", "17 Operand Expected @7"},
    {"abs(1 2) + abs(", "7 Operand not expected @7"},
    // what is allowed
    {"((1+2))*3", "9"},
    {"(1+2)*(3-4)", "-3"},
    {"2*(3+(4-1))^2", "72"},
    {"+(1+2)*+3", "9"},
    {"-(-1)", "1"},
    {"2*-3", "-6"},
    {"mod(1+2,-2)*4", "4"},
    {"Max((1),-(2),3)", "3"},
};

constexpr Row arithmetic_lc[] = {
    // ranks, and from the left or right
    {"10+5*2+2/4", "20.5"},
    {"1+2*3", "7"},
    {"7-2*3", "1"},
    {"1&2*3", "'16'"},
    {"2*3^2", "18"},
    {"8/2^2", "2"},
    {"2^3^2", "512"},
    {"-2^2", "4"},
    {"2^-2", "0.25"},
    {"10-2-3", "5"},
    {"8/4/2", "1"},
    {"8/4*2", "4"},
    {"1-2+3", "2"},
    {"1 & 2 & 3 + 1", "124"},
    {"2+2=2+2", "TRUE"},
    {"2=1+1", "TRUE"},
    {"3>1+1", "TRUE"},
    {"3<>1+1", "TRUE"},
    {"1<1+1", "TRUE"},
    {"2>=1+1", "TRUE"},
    {"2<=1+1", "TRUE"},
    {"2=2 and 3=3", "TRUE"},
    {"1=2 or 3=3", "TRUE"},
    {"2=2 xor 3=3", "FALSE"},
    {"true or true and false", "FALSE"},
    {"true or false xor true", "FALSE"},
    // type rules and errors
    {"\"12\"+\"0x10\"", "28"},
    {"1+\"one\"", "4 Type mismatch @3"},
    {"\" 1\"-1", "4 Type mismatch @1"},
    {"true+1", "143 Boolean is not a number @1"},
    {"-true", "143 Boolean is not a number @2"},
    {"2*false", "143 Boolean is not a number @3"},
    {"\"x\"*true", "143 Boolean is not a number @5"},
    {"\"x\"^1", "4 Type mismatch @1"},
    {"10/0", "133 Divide by zero @4"},
    {"5/(1-1)", "133 Divide by zero @5"},
    {"\"x\"/2", "4 Type mismatch @1"},
    {"\"x\"/0", "133 Divide by zero @5"},
    {"0/5", "0"},
    {"(-1)^0.5+1", "150 Not a number @9"},
    {"1e300*1e300-1", "149 Number is infinite @12"},
    {"1e300*1e300", "inf"},
    {"-(1e300*1e300)", "149 Number is infinite @1"},
    {"4/2+1/0", "133 Divide by zero @7"},
};

constexpr Row comparisons_lc[] = {
    {"5>10 or 10<15", "TRUE"},
    {"3>3", "FALSE"},
    {"3>2", "TRUE"},
    {"3>=3", "TRUE"},
    {"2>=3", "FALSE"},
    {"2<2", "FALSE"},
    {"2<=2", "TRUE"},
    {"3<=2", "FALSE"},
    {"\"10\">\"9\"", "TRUE"},
    {"\"y\">\"x\"", "4 Type mismatch @1"},
    {"1<\"x\"", "4 Type mismatch @3"},
    {"\"x\"<true", "4 Type mismatch @1"},
    {"1>=true", "143 Boolean is not a number @4"},
    // equal are numbers closer than ten times the double epsilon
    {"0.1+0.2=0.3", "TRUE"},
    {"2.22e-15=0", "TRUE"},
    {"2.2204460492503131e-15=0", "FALSE"},
    {"2.23e-15=0", "FALSE"},
    {"0=-2.23e-15", "FALSE"},
    {"2.23e-15<>0", "TRUE"},
    {"\"xyz\"=\"XYZ\"", "TRUE"},
    {"\"xyz\"<>\"XYZ\"", "FALSE"},
    {"\"xyz\"=\"xya\"", "FALSE"},
    {"31=\"1f\"", "TRUE"},
    {"\"5.0\"=\"05\"", "TRUE"},
    {"true=1", "TRUE"},
    {"\"x\"=5", "8 Type mismatch @5"},
    {"5=\"x\"", "8 Type mismatch @1"},
    {"\"x\"<>5", "TRUE"},
    {"true<>\"TRUE\"", "FALSE"},
    {"kaka=1", "8 Type mismatch @6"},
    {"kaka=\"x\"", "48 Missing variable: kaka @1"},
    {"\"a\"<>kaka", "48 Missing variable: kaka @6"},
    // both sides are evaluated
    {"true and true", "TRUE"},
    {"true and false", "FALSE"},
    {"false or false", "FALSE"},
    {"true xor false", "TRUE"},
    {"true xor true", "FALSE"},
    {"true or 1/0=1", "133 Divide by zero @11"},
    {"1 and true", "6 Type mismatch @1"},
    {"true or \"true\"", "6 Type mismatch @9"},
    // joining
    {"\"000\" & (120 + 3)", "'000123'"},
    {"1.50 & 2", "'1.502'"},
    {"true & 1", "'TRUE1'"},
    {"\"a\" & \"b\" & \"c\"", "'abc'"},
    {"1 & 1/0", "133 Divide by zero @7"},
    {"1 & kaka", "48 Missing variable: kaka @5"},
    {"kaka & 1/0", "133 Divide by zero @10"},
    {"1=1 & 1", "FALSE"},
};

constexpr Row errorValues_lc[] = {
    {"IsErr(1/0+abs(3))", "TRUE"},
    {"IF(true,1,1/0+Max(1,2))", "1"},
    {"IF(false,kaka,1/0)+1", "133 Divide by zero @17"},
    {"IF(IsNA(missing),-66,missing*3)", "-66"},
    {"IF(IsNA(missing),3*missing, 15)", "48 Missing variable: missing @20"},
    {"Max(1, Max(2, 1/0) + Max(3, 4), 5)", "133 Divide by zero @17"},
    {"IsErr(Max(1, 1/0, Max(2)))", "TRUE"},
    {"IF(IsErr(1/0) and IsErr(kaka+Max(1,2)), 3, 4)", "3"},
    {"IF(IsErr(1/0+Max(1,2)), Max(4,Min(5,6)), 7)", "5"},
    {"1/0+Max(1,2)", "133 Divide by zero @3"},
    {"1+2+foo(1/0)", "201 Unknown function: foo @5"},
    {"IF(true, foo(1), 2)", "201 Unknown function: foo @10"},
    {"IF(false, foo(1), 2)", "2"},
    {"1 + DateToDays(0)", "146 Invalid date: 0 @15"},
    {"1+sqrt(-1)", "504 Invalid operation @7"},
    {"5/IF(true, 0, 1)", "133 Divide by zero @5"},
    {"5/InitIfNa(test, 0)", "133 Divide by zero @18"},
    {"IF(false,abs(e),abs(PI))", "3.14159265358979"},
};

/// Rows too long to write down.
void TestLimits(TestCommand& test)
{
    using SelfTest::Repeat;
    const auto check = [&](const WString& expression, const WString& outcome) {
        ExpressionEvaluator evaluator(nullptr, 0);
        const WString found = SelfTest::Outcome(evaluator, expression);
        Assertion::AreEqual(test, outcome, found, WString::Format(L"%s...", expression.Left(20)));
    };
    const WString longest(1000, L'x');
    check(L"\"" + longest + L"\"", L"'" + longest + L"'");
    check(L"\"" + longest + L"x\"", L"35 String too long @1001");
    check(L"\"" + longest, L"36 Missing \", unexpected end of string @1001");
    const WString name(63, L'n');
    check(name + L"+0", L"48 Missing variable: " + name + L" @1");
    check(L"1+" + name + L"n", L"39 Variable name is too long @2");
    check(WString(70, L'F') + L"(1)", L"201 Unknown function: " + WString(63, L'f') + L" @1");
    check(Repeat(L"abs(", 200) + L"-1" + WString(200, L')'), L"1");
    check(Repeat(L"abs(", 201) + L"-1" + WString(201, L')'), L"513 Expression is nested too deeply @804");
    check(WString(1000, L'(') + L"1" + WString(1000, L')'), L"1");
    check(Repeat(L"1+", 500) + L"1", L"501");
}
} // namespace

void SelfTest::TestLanguage(TestCommand& test)
{
    CheckRows(test, tokens_lc);
    CheckRows(test, grammar_lc);
    CheckRows(test, arithmetic_lc);
    CheckRows(test, comparisons_lc);
    CheckRows(test, errorValues_lc);
    ExpressionEvaluator reused(nullptr, 0);
    CheckRows(test, reused, grammar_lc);
    TestLimits(test);
}
