// Expressions without functions: reading, grammar, operators.

#include "SelfTestParts.h"

namespace {
using SelfTest::Row;

constexpr Row tokens_lc[] = {
    // numbers keep the form in which they were written
    {L"1.50", L"1.50"},
    {L".5", L".5"},
    {L"5.", L"5."},
    {L"2E-2", L"2E-2"},
    {L"0x1F", L"0x1F"},
    {L"0x1F+0", L"31"},
    {L"1.50+0", L"1.5"},
    {L"1e400+0", L"149 Number is infinite @6"},
    {L".", L"37 Invalid number @0"},
    {L"1+.a", L"37 Invalid number @2"},
    {L"12X5*2", L"48 Missing variable: 12X5 @1"},
    {L"9z+1", L"48 Missing variable: 9z @1"},
    {L"0+1", L"1"},
    // texts
    {L"\"\"", L"''"},
    {L"\"a\\\"b\\\\c\\n\"", L"'a\"b\\c\\n'"},
    {L"\"x", L"36 Missing \", unexpected end of string @2"},
    {L"\"x\\\"", L"36 Missing \", unexpected end of string @4"},
    {L"\"\u00E4\u20AC\" & 1", L"'\u00E4\u20AC1'"},
    {L"\"a\"\"b\"", L"7 Operand not expected @6"},
    // blanks, and characters that begin nothing
    {L" \t 5/0", L"133 Divide by zero @6"},
    {L"1 +\t2 => 3", L"20 Expecting operand @8"},
    {L"", L"17 Operand Expected @0"},
    {L"   ", L"17 Operand Expected @3"},
    {L"1\n", L"38 Invalid character @2"},
    {L"a#", L"38 Invalid character @2"},
    {L"[a]", L"38 Invalid character @1"},
    {L"1+/", L"20 Expecting operand @3"},
    {L"@", L"38 Invalid character @1"},
    // built-in names
    {L"True", L"TRUE"},
    {L"FALSE", L"FALSE"},
    {L"pi", L"3.14159265358979"},
    {L"E", L"2.71828182845905"},
    {L"LF", L"'\n'"},
    {L"rnd>=0 and RND<1", L"TRUE"},
    {L"Timer>=0", L"TRUE"},
    {L"Timer-Timer<=0", L"TRUE"},
    // names and keywords
    {L"kaka", L"48 kaka @1"},
    {L"10 + kaka", L"48 Missing variable: kaka @6"},
    {L"a.b_9+1", L"48 Missing variable: a.b_9 @1"},
    {L"true AND false", L"FALSE"},
    {L"true oR false", L"TRUE"},
    {L"true and\tfalse", L"7 Operand not expected @8"},
    {L"true and(false)", L"22 Operand not expected @9"},
    {L"or+1", L"48 Missing variable: or @1"},
    {L"true or", L"7 Operand not expected @7"},
    {L"an + 1", L"48 Missing variable: an @1"},
    {L"Foo(1)", L"201 Unknown function: foo @1"},
    {L"1+or(2)", L"201 Unknown function: or @3"},
    {L"max (1,2)", L"18 Operator Expected @5"},
    // references whose form is wrong
    {L"%x{a}", L"41 Invalid instrument variable type @2"},
    {L"1+%", L"41 Invalid instrument variable type @4"},
    {L"%S name", L"42 Expecting a '{' character as the start of an instrument variable @3"},
    {L"%u", L"42 Expecting a '{' character as the start of an instrument variable @3"},
    {L"%S{a", L"43 Expecting a '}' character as delimiter of the instrument variable @4"},
    {L"1+%E{PATH}", L"49 Environment instrument variables not supported @4"},
    {L"%C{SectionKey}", L"46 Missing config section name, in %C{SectionKey} @4"},
    {L"1+%C{[Section Key}", L"45 Invalid config section name, missing ']', in name: %C{[Section Key} @6"},
};

constexpr Row grammar_lc[] = {
    {L"1 2", L"7 Operand not expected @3"},
    {L"(1)2", L"7 Operand not expected @4"},
    {L"--1", L"15 Two consecutive unary operators not allowed @2"},
    {L"2*+-1", L"15 Two consecutive unary operators not allowed @4"},
    {L"&1", L"16 Operand Expected @1"},
    {L"1+&1", L"16 Operand Expected @3"},
    {L"1+", L"17 Operand Expected @2"},
    {L"-", L"17 Operand Expected @1"},
    {L"abs(,1)", L"17 Operand Expected @5"},
    {L"2(3)", L"18 Operator Expected @2"},
    {L")", L"19 Operand Expected @1"},
    {L"(1+)", L"19 Operand Expected @4"},
    {L"1+2/*3", L"20 Expecting operand @5"},
    {L"=1", L"20 Expecting operand @1"},
    {L"-*1", L"20 Expecting operand @2"},
    {L"2><3", L"20 Expecting operand @3"},
    {L"1 abs(2)", L"22 Operand not expected @6"},
    {L"(1+2", L"24 Expected ')' @4"},
    {L"((1)", L"24 Expected ')' @4"},
    {L"(1,2)", L"24 Expected ')' @3"},
    {L"mod(7,4,2,1)", L"25 Too many parameters @8"},
    {L"sqrt(4,2)", L"26 Too many parameters @7"},
    {L"mod(7)", L"28 Missing parameter @6"},
    {L"mod(7", L"28 Missing parameter @5"},
    {L"abs((1)", L"30 Missing ')' @7"},
    {L"Max(1,2", L"30 Missing ')' @7"},
    {L"1+2)", L"32 Closing parenthesis without matching opening parenthesis @4"},
    {L"1,2", L"33 Parameter separator not allowed outside function call @2"},
    {L"abs()", L"145 Missing parameter @5"},
    {L"Max(1,abs())", L"145 Missing parameter @11"},
    {L"1/0 + (", L"17 Operand Expected @7"},
    {L"abs(1 2) + abs(", L"7 Operand not expected @7"},
    // what is allowed
    {L"((1+2))*3", L"9"},
    {L"(1+2)*(3-4)", L"-3"},
    {L"2*(3+(4-1))^2", L"72"},
    {L"+(1+2)*+3", L"9"},
    {L"-(-1)", L"1"},
    {L"2*-3", L"-6"},
    {L"mod(1+2,-2)*4", L"4"},
    {L"Max((1),-(2),3)", L"3"},
};

constexpr Row arithmetic_lc[] = {
    // ranks, and from the left or right
    {L"10+5*2+2/4", L"20.5"},
    {L"1+2*3", L"7"},
    {L"7-2*3", L"1"},
    {L"1&2*3", L"'16'"},
    {L"2*3^2", L"18"},
    {L"8/2^2", L"2"},
    {L"2^3^2", L"512"},
    {L"-2^2", L"4"},
    {L"2^-2", L"0.25"},
    {L"10-2-3", L"5"},
    {L"8/4/2", L"1"},
    {L"8/4*2", L"4"},
    {L"1-2+3", L"2"},
    {L"1 & 2 & 3 + 1", L"124"},
    {L"2+2=2+2", L"TRUE"},
    {L"2=1+1", L"TRUE"},
    {L"3>1+1", L"TRUE"},
    {L"3<>1+1", L"TRUE"},
    {L"1<1+1", L"TRUE"},
    {L"2>=1+1", L"TRUE"},
    {L"2<=1+1", L"TRUE"},
    {L"2=2 and 3=3", L"TRUE"},
    {L"1=2 or 3=3", L"TRUE"},
    {L"2=2 xor 3=3", L"FALSE"},
    {L"true or true and false", L"FALSE"},
    {L"true or false xor true", L"FALSE"},
    // type rules and errors
    {L"\"12\"+\"0x10\"", L"28"},
    {L"1+\"one\"", L"4 Type mismatch @3"},
    {L"\" 1\"-1", L"4 Type mismatch @1"},
    {L"true+1", L"143 Boolean is not a number @1"},
    {L"-true", L"143 Boolean is not a number @2"},
    {L"2*false", L"143 Boolean is not a number @3"},
    {L"\"x\"*true", L"143 Boolean is not a number @5"},
    {L"\"x\"^1", L"4 Type mismatch @1"},
    {L"10/0", L"133 Divide by zero @4"},
    {L"5/(1-1)", L"133 Divide by zero @5"},
    {L"\"x\"/2", L"4 Type mismatch @1"},
    {L"\"x\"/0", L"133 Divide by zero @5"},
    {L"0/5", L"0"},
    {L"(-1)^0.5+1", L"150 Not a number @9"},
    {L"1e300*1e300-1", L"149 Number is infinite @12"},
    {L"1e300*1e300", L"inf"},
    {L"-(1e300*1e300)", L"149 Number is infinite @1"},
    {L"4/2+1/0", L"133 Divide by zero @7"},
};

constexpr Row comparisons_lc[] = {
    {L"5>10 or 10<15", L"TRUE"},
    {L"3>3", L"FALSE"},
    {L"3>2", L"TRUE"},
    {L"3>=3", L"TRUE"},
    {L"2>=3", L"FALSE"},
    {L"2<2", L"FALSE"},
    {L"2<=2", L"TRUE"},
    {L"3<=2", L"FALSE"},
    {L"\"10\">\"9\"", L"TRUE"},
    {L"\"y\">\"x\"", L"4 Type mismatch @1"},
    {L"1<\"x\"", L"4 Type mismatch @3"},
    {L"\"x\"<true", L"4 Type mismatch @1"},
    {L"1>=true", L"143 Boolean is not a number @4"},
    // equal are numbers closer than ten times the double epsilon
    {L"0.1+0.2=0.3", L"TRUE"},
    {L"2.22e-15=0", L"TRUE"},
    {L"2.23e-15=0", L"FALSE"},
    {L"0=-2.23e-15", L"FALSE"},
    {L"2.23e-15<>0", L"TRUE"},
    {L"\"xyz\"=\"XYZ\"", L"TRUE"},
    {L"\"xyz\"<>\"XYZ\"", L"FALSE"},
    {L"\"xyz\"=\"xya\"", L"FALSE"},
    {L"31=\"1f\"", L"TRUE"},
    {L"\"5.0\"=\"05\"", L"TRUE"},
    {L"true=1", L"TRUE"},
    {L"\"x\"=5", L"8 Type mismatch @5"},
    {L"5=\"x\"", L"8 Type mismatch @1"},
    {L"\"x\"<>5", L"TRUE"},
    {L"true<>\"TRUE\"", L"FALSE"},
    {L"kaka=1", L"8 Type mismatch @6"},
    {L"kaka=\"x\"", L"48 Missing variable: kaka @1"},
    {L"\"a\"<>kaka", L"48 Missing variable: kaka @6"},
    // both sides are evaluated
    {L"true and true", L"TRUE"},
    {L"true and false", L"FALSE"},
    {L"false or false", L"FALSE"},
    {L"true xor false", L"TRUE"},
    {L"true xor true", L"FALSE"},
    {L"true or 1/0=1", L"133 Divide by zero @11"},
    {L"1 and true", L"6 Type mismatch @1"},
    {L"true or \"true\"", L"6 Type mismatch @9"},
    // joining
    {L"\"000\" & (120 + 3)", L"'000123'"},
    {L"1.50 & 2", L"'1.502'"},
    {L"true & 1", L"'TRUE1'"},
    {L"\"a\" & \"b\" & \"c\"", L"'abc'"},
    {L"1 & 1/0", L"133 Divide by zero @7"},
    {L"1 & kaka", L"48 Missing variable: kaka @5"},
    {L"kaka & 1/0", L"133 Divide by zero @10"},
    {L"1=1 & 1", L"FALSE"},
};

constexpr Row errorValues_lc[] = {
    {L"IsErr(1/0+abs(3))", L"TRUE"},
    {L"IF(true,1,1/0+Max(1,2))", L"1"},
    {L"IF(false,kaka,1/0)+1", L"133 Divide by zero @17"},
    {L"IF(IsNA(missing),-66,missing*3)", L"-66"},
    {L"IF(IsNA(missing),3*missing, 15)", L"48 Missing variable: missing @20"},
    {L"Max(1, Max(2, 1/0) + Max(3, 4), 5)", L"133 Divide by zero @17"},
    {L"IsErr(Max(1, 1/0, Max(2)))", L"TRUE"},
    {L"IF(IsErr(1/0) and IsErr(kaka+Max(1,2)), 3, 4)", L"3"},
    {L"IF(IsErr(1/0+Max(1,2)), Max(4,Min(5,6)), 7)", L"5"},
    {L"1/0+Max(1,2)", L"133 Divide by zero @3"},
    {L"1+2+foo(1/0)", L"201 Unknown function: foo @5"},
    {L"IF(true, foo(1), 2)", L"201 Unknown function: foo @10"},
    {L"IF(false, foo(1), 2)", L"2"},
    {L"1 + DateToDays(0)", L"146 Invalid date: 0 @15"},
    {L"1+sqrt(-1)", L"504 Invalid operation @7"},
    {L"5/IF(true, 0, 1)", L"133 Divide by zero @5"},
    {L"5/InitIfNa(test, 0)", L"133 Divide by zero @18"},
    {L"IF(false,abs(e),abs(PI))", L"3.14159265358979"},
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
