// The commands, in one environment of their own. None fails in a way that would be written to the error log: what fails
// within If and While is a Calc.

#include "Commands/CommandRunner.h"
#include "SelfTestParts.h"
#include "Services/Clock.h"

namespace {
using SelfTest::Repeat;

/// A command line with its exit code and the lines that it writes, joined by "|".
struct CommandRow
{
    const char* line;
    const char* exitCode;
    const char* output;
};

constexpr CommandRow calc_lc[] = {
    {"Calc 1+2*3", "0:0:0", "7"},
    {"Calc -5+3", "0:0:0", "-2"},
    {"Calc \"%s%n%%\" & \"a  b\"", "0:0:0", "%s%n%%a  b"},
    {"Calc -q 1+2*3", "0:0:0", ""},
    {"Calc 10/0", "1043:505:133", "Error:|  Divide by zero|  10/0|     ^"},
    {"Calc )", "1043:505:19", "Error:|  Operand Expected|  )|  ^"},
    {"Calc -q 10/0", "1043:505:133", ""},
    {"Set ErrMsg", "1045:0:5", ""},
    {"Calc -v 10/0", "1043:505:133",
        "Error:|  Divide by zero|  10/0|     ^|Test code:|AssertFail 1043:505:133 Calc -v 10/0|"
        "Assert ErrMsg=\"Divide by zero\" AND ErrPos=4|"},
    {"Calc ErrMsg & ErrPos", "0:0:0", "Divide by zero4"},
    {"Calc -v -q )", "1043:505:19", ""},
    {"Calc ErrMsg & ErrPos", "0:0:0", "Operand Expected1"},
    {"Calc -v 1", "0:0:0", "1"},
    {"Calc ErrMsg & ErrPos", "0:0:0", "-1"},
    {"Calc", "1043:0:1", ""},
    {"Calc -help 1", "1043:0:1", ""},
    {"Calc -x 1", "1043:0:2", ""},
    {"Calc -q1 1", "1043:0:3", ""},
    {"Calc -help1", "1043:0:4", ""},
    {"Calc -h1", "1043:0:4", ""},
    {"Calc -v1 1", "1043:0:5", ""},
};

constexpr CommandRow assert_lc[] = {
    {"Set Volume=12.5", "0:0:0", ""},
    {"Assert Volume=12.5", "0:0:0", ""},
    {"Assert \"true\"", "0:0:0", ""},
    {"Assert Volume>Max(13, %E{Volume})", "9015:0:13",
        "Assertion \"Volume>Max(13, %E{Volume})\" failed!|  Environment:Volume=12.5|  Environment:Volume=12.5|"
        "  Function:max=13"},
    {"Assert -q 1=2", "9015:0:13", "Assertion \"1=2\" failed!"},
    {"Assert -c1 Volume<1", "9015:0:13", "Retry: 1|Retry: 2|Assertion \"Volume<1\" failed!|  Environment:Volume=12.5"},
    {"Assert -q -c1 1=2", "9015:0:13", "Assertion \"1=2\" failed!"},
    {"Assert -c3 1=1", "0:0:0", ""},
    {"Assert -c3 1+", "9015:505:17", "Operand Expected|1+| ^"},
    {"Assert -q 1+", "9015:505:17", ""},
    {"Assert \"kaka\"", "9015:505:131", "Expression cannot be evaluated as a number|\"kaka\"|^"},
    {"Assert", "9015:0:1", ""},
    {"Assert -x 1=1", "9015:0:2", ""},
    {"Assert -q1 1=1", "9015:0:3", ""},
    {"Assert -c0 1=1", "9015:0:4", ""},
    {"Assert -c1000 1=1", "0:0:0", ""},
    {"Assert -c1001 1=1", "9015:0:4", ""},
};

constexpr CommandRow if_lc[] = {
    {"If 1=1 Then Calc 1 Else Calc 2", "0:0:0", "1"},
    {"IF 1=2 THEN Calc 1 ELSE Calc 2", "0:0:0", "2"},
    {"If 1=2 Then Calc 1", "0:0:0", ""},
    {"If \"then\"=\"THEN\" Then Calc \"else\" & 1; Calc 2 ;; Calc -q 1/0; Calc 3", "0:0:0", "else1|2|3"},
    {"If -l, 1=2 Then Calc 1 Else Calc \"b;c\",Calc 2", "0:0:0", "b;c|2"},
    {"If -v 1=1 Then Calc 1;Calc 2 Else Calc 3", "0:0:0", "Condition is true - Run: Calc 1;Calc 2|1|2"},
    {"If -v 1=2 Then Calc 1 Else Calc 2", "0:0:0", "Condition is false - Run: Calc 2|2"},
    {"If -v 1=2 Then Calc 1", "0:0:0", "Condition is false - Nothing to run"},
    {"If 1+kaka Then Calc 1", "1042:505:48", "Missing variable: kaka|1+kaka|  ^"},
    {"If -rPlate7 1=1 Then Calc %E{RecordHeader} & RH_IF", "0:0:0", "-rPlate7-rPlate7"},
    {"If", "1042:0:1", ""},
    {"If -x 1=1 Then Calc 1", "1042:0:2", ""},
    {"If 1=1", "1042:0:3", ""},
    {"If 1=1 Then", "1042:0:4", ""},
    {"If 1=1 Then Else Calc 1", "1042:0:4", ""},
    {"If 1=1 Then Calc 1 Else", "1042:0:5", ""},
    {"If -v1 1=1 Then Calc 1", "1042:0:6", ""},
    {"If -r 1=1 Then Calc 1", "1042:0:7", ""},
    {"If -r123456789012345678901234567890123 1=1 Then Calc 1", "1042:0:7", ""},
    {"If -r12345678901234567890123456789012 1=1 Then Calc 1", "0:0:0", "1"},
    {"If -l;; 1=1 Then Calc 1", "1042:0:8", ""},
    {"If -l 1=1 Then Calc 1", "1042:0:8", ""},
    {"If 1=1 Then ;", "0:0:0", ""},
};

constexpr CommandRow set_lc[] = {
    {"Set -z *", "0:0:0", "ErrMsg|ErrPos|RecordHeader|RH_IF|Volume|Deleted 5 variable(s)"},
    {"Set", "0:0:0", "No environment variables defined"},
    {"Set -z *", "0:0:0", "No environment variables defined"},
    {"Set Alpha=1+1", "0:0:0", ""},
    {"Set -v  Pi.2 = PI/2 ", "0:0:0", "Pi.2=1.5707963267949"},
    {"Set -v ALPHA=alpha*2.50", "0:0:0", "ALPHA=5"},
    {"Set -v t=\"%s\" & \" a=b\"", "0:0:0", "t=%s a=b"},
    {"Set alpha", "0:0:0", "alpha=5"},
    {"Set t=", "0:0:0", "t=%s a=b"},
    {"Set", "0:0:0", "Name   Value|Alpha  5|Pi.2   1.5707963267949|t      %s a=b"},
    {"Set ?LPHA*", "0:0:0", "Name   Value|Alpha  5"},
    {"Set z*", "0:0:0", "No matching environment variables found"},
    {"Set -i Alpha=7", "0:0:0", ""},
    {"Set -i -v alpha=1/0", "0:0:0", "Variable \"alpha\" exists, skip initialization"},
    {"Set -i -v beta=2", "0:0:0", "beta=2"},
    {"Set -i beta", "0:0:0", "beta=2"},
    {"Set Alpha=1/0", "1045:505:133", ""},
    {"Set -v Alpha=1/0", "1045:505:133", "Divide by zero|1/0|  ^"},
    {"Set Alpha", "0:0:0", "Alpha=5"},
    {"Set -z ALPHA", "0:0:0", "ALPHA deleted"},
    {"Set -z Alpha", "0:0:0", "Alpha not found"},
    {"Set -z ?.2", "0:0:0", "Deleted 0 variable(s)"},
    {"Set -z p?.*", "0:0:0", "Pi.2|Deleted 1 variable(s)"},
    {"Set X Y=1", "1045:0:3", ""},
    {"Set X\tY", "1045:0:3", ""},
    {"Set -x a=1", "1045:0:2", ""},
    {"Set a-b=1", "1045:0:4", ""},
    {"Set x*=1", "1045:0:4", ""},
    {"Set x?=1", "1045:0:4", ""},
    {"Set a%s", "1045:0:4", ""},
    {"Set nothing", "1045:0:5", ""},
    {"Set -v1 x=1", "1045:0:6", ""},
    {"Set -i1 x=1", "1045:0:7", ""},
    {"Set -z1 x=1", "1045:0:8", ""},
    {"Set -z x=1", "1045:0:9", ""},
    {"Set -v =\"no name\"", "0:0:0", "=no name"},
};

constexpr CommandRow while_lc[] = {
    {"Set EC_While=7", "0:0:0", ""},
    {"While i<=3 Do Calc i", "0:0:0", "1|2|3"},
    {"Set i", "0:0:0", "i=4"},
    {"Set EC_While", "1045:0:5", ""},
    {"Set n=0", "0:0:0", ""},
    {"While -c3 InitIfNa(n, 0)>=0 Do Set n=n+i", "0:0:0", ""},
    {"Calc n & i", "0:0:0", "63"},
    {"While -v -c1 1=1 Do Calc 1;", "0:0:0",
        "Condition is true - Iteration: 1|Run command: Calc 1|1|Max count exceeded"},
    {"While -v -c1 1=2 Do Calc 1", "0:0:0", "Condition is false - Iteration: 1"},
    {"While -v -c0 1/0 Do Calc 1", "0:0:0", "Max count exceeded"},
    {"While -l, i<2 Do Calc \"a;b\",Calc 2", "0:0:0", "a;b|2"},
    {"While i<3 Do", "0:0:0", ""},
    {"While i<3 and 1/(2-i)>0 Do Calc i", "1064:505:133", "1|Divide by zero|i<3 and 1/(2-i)>0|            ^"},
    {"While -er1043:*;5:6:7 i<=2 Do Calc EC_While; Calc -q 1/0; Calc EC_While", "0:0:0",
        "0|1043:505:133|0|1043:505:133"},
    {"Set EC_While", "0:0:0", "EC_While=1043:505:133"},
    {"While -er1,*:505:13? i<=1 Do Calc -q 1/0", "0:0:0", ""},
    {"While -er1043:505:13 i<=1 Do Calc 1; Calc -q 1/0; Calc 2", "1043:505:133", "1"},
    {"While -er* 1=2 Do Calc 1", "0:0:0", ""},
    {"Set EC_While", "0:0:0", "EC_While=0"},
    {"While -er9015:* i<=1 Do Assert 1=2; Calc EC_While", "0:0:0", "Assertion \"1=2\" failed!|9015:0:13"},
    {"While -rPlate7 -c1 1=1 Do Calc RecordHeader & RH_WHILE", "0:0:0", "-rPlate7-rPlate7"},
    {"While", "1064:0:1", ""},
    {"While -x 1=1 Do Calc 1", "1064:0:2", ""},
    {"While 1=1", "1064:0:3", ""},
    {"While -v1 1=2 Do Calc 1", "1064:0:6", ""},
    {"While -r 1=2 Do Calc 1", "1064:0:7", ""},
    {"While -c-1 1=2 Do Calc 1", "1064:0:8", ""},
    {"While -c2147483647 1=2 Do Calc 1", "0:0:0", ""},
    {"While -c2147483648 1=2 Do Calc 1", "1064:0:8", ""},
    {"While -l;; 1=2 Do Calc 1", "1064:0:9", ""},
    {"While -l 1=2 Do Calc 1", "1064:0:9", ""},
    {"While -w0.0009 1=2 Do Calc 1", "1064:0:10", ""},
    {"While -w0.001 1=2 Do Calc 1", "0:0:0", ""},
    {"While -w86400 1=2 Do Calc 1", "0:0:0", ""},
    {"While -w86400.1 1=2 Do Calc 1", "1064:0:10", ""},
    {"While -er 1=2 Do Calc 1", "1064:0:12", ""},
    {"While -er123456789012345678901234567890 1=2 Do Calc 1", "0:0:0", ""},
    {"While -er1234567890123456789012345678901 1=2 Do Calc 1", "1064:0:12", ""},
};

/// Runs command lines in an environment that ends with it.
class Session
{
public:
    explicit Session(TestCommand& test) : test(test) {}

    void Check(const WString& line, const WString& exitCode, const WString& output)
    {
        WStringArray lines;
        const ExitCode code = runner.Run(line, lines);
        WString written;
        for (const WString& each : lines)
            written += each + L"|";
        if (!lines.IsEmpty())
            written = written.Left(static_cast<unsigned int>(written.Length() - 1));
        const WString what = line.Left(80);
        Assertion::AreEqual(test, exitCode, code.ToString(), what);
        Assertion::AreEqual(test, output, written, what);
    }
    void Check(std::span<const CommandRow> rows)
    {
        for (const CommandRow& row : rows)
            Check(WString::FromUtf8(row.line), WString::FromUtf8(row.exitCode), WString::FromUtf8(row.output));
    }
    void CheckLists();
    void CheckWaits();

private:
    TestCommand& test;
    TestCommand runner{Environment()};
};

/// Lists of commands and of patterns at and beyond their limits.
void Session::CheckLists()
{
    const WString hundred = Repeat(L"1|", 99) + L"1";
    for (const auto& [statement, refusal] :
        {std::pair(L"If 1=1 Then ", L"1042:0:9"), {L"While i<2 Do ", L"1064:0:11"}}) {
        Check(statement + Repeat(L"Calc 1;", 100), L"0:0:0", hundred);
        Check(statement + Repeat(L"Calc 1;", 101), refusal, L"");
        Check(statement + WString(L"Calc -q 1") + WString(4087, L'0'), L"0:0:0", L"");
        Check(statement + WString(L"Calc -q 1") + WString(4088, L'0'), refusal, L"");
    }
    Check(L"While -er" + Repeat(L"1,", 99) + L"* i<2 Do Calc -q 1/0", L"0:0:0", L"");
    Check(L"While -er" + Repeat(L"1,", 100) + L"* i<2 Do Calc -q 1/0", L"1064:0:12", L"");
    Check(L"While -er" + Repeat(L",", 999) + L"* i<2 Do Calc -q 1/0", L"0:0:0", L"");
    Check(L"While -er" + Repeat(L",", 1000) + L"* i<2 Do Calc -q 1/0", L"1064:0:12", L"");
}

/// A wait follows each iteration and each attempt, and lasts no less than asked for.
void Session::CheckWaits()
{
    const auto check = [this](
                           const wchar_t* line, const wchar_t* exitCode, const wchar_t* output, unsigned int expected) {
        const unsigned int start = GetTickCount();
        Check(line, exitCode, output);
        const unsigned int elapsed = GetTickCount() - start;
        Assertion::IsTrue(
            test, elapsed + 5 >= expected, WString::Format(L"%s took %u ms instead of %u", line, elapsed, expected));
    };
    check(L"While -w0.1 i<3 Do Calc i", L"0:0:0", L"1|2", 200);
    check(L"Assert -c2 1=2", L"9015:0:13", L"Retry: 1|Retry: 2|Retry: 3|Assertion \"1=2\" failed!", 300);
}

void TestReturnString(TestCommand& test)
{
    for (const wchar_t* line : {L"Calc 2^3^2", L"Calc -q 2^3^2"}) {
        ArrayPipe pipe;
        Assertion::AreEqual(
            test, L"512", CommandRunner::Run(line, pipe, Environment(), CommandFlags::noFailureLog).returnString, line);
    }
}
} // namespace

void SelfTest::TestCommands(TestCommand& test)
{
    Session session(test);
    session.Check(calc_lc);
    session.Check(assert_lc);
    session.Check(if_lc);
    session.Check(set_lc);
    session.Check(while_lc);
    session.CheckLists();
    session.CheckWaits();
    TestReturnString(test);
}
