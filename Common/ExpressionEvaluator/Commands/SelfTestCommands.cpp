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
    const wchar_t* line;
    const wchar_t* exitCode;
    const wchar_t* output;
};

constexpr CommandRow calc_lc[] = {
    {L"Calc 1+2*3", L"0:0:0", L"7"},
    {L"Calc -5+3", L"0:0:0", L"-2"},
    {L"Calc \"%s%n%%\" & \"a  b\"", L"0:0:0", L"%s%n%%a  b"},
    {L"Calc -q 1+2*3", L"0:0:0", L""},
    {L"Calc 10/0", L"1043:505:133", L"Error:|  Divide by zero|  10/0|     ^"},
    {L"Calc )", L"1043:505:19", L"Error:|  Operand Expected|  )|  ^"},
    {L"Calc -q 10/0", L"1043:505:133", L""},
    {L"Set ErrMsg", L"1045:0:5", L""},
    {L"Calc -v 10/0", L"1043:505:133",
        L"Error:|  Divide by zero|  10/0|     ^|Test code:|AssertFail 1043:505:133 Calc -v 10/0|"
        L"Assert ErrMsg=\"Divide by zero\" AND ErrPos=4|"},
    {L"Calc ErrMsg & ErrPos", L"0:0:0", L"Divide by zero4"},
    {L"Calc -v -q )", L"1043:505:19", L""},
    {L"Calc ErrMsg & ErrPos", L"0:0:0", L"Operand Expected1"},
    {L"Calc -v 1", L"0:0:0", L"1"},
    {L"Calc ErrMsg & ErrPos", L"0:0:0", L"-1"},
    {L"Calc", L"1043:0:1", L""},
    {L"Calc -help 1", L"1043:0:1", L""},
    {L"Calc -x 1", L"1043:0:2", L""},
    {L"Calc -q1 1", L"1043:0:3", L""},
    {L"Calc -help1", L"1043:0:4", L""},
    {L"Calc -h1", L"1043:0:4", L""},
    {L"Calc -v1 1", L"1043:0:5", L""},
};

constexpr CommandRow assert_lc[] = {
    {L"Set Volume=12.5", L"0:0:0", L""},
    {L"Assert Volume=12.5", L"0:0:0", L""},
    {L"Assert \"true\"", L"0:0:0", L""},
    {L"Assert Volume>Max(13, %E{Volume})", L"9015:0:13",
        L"Assertion \"Volume>Max(13, %E{Volume})\" failed!|  Environment:Volume=12.5|  Environment:Volume=12.5|"
        L"  Function:max=13"},
    {L"Assert -q 1=2", L"9015:0:13", L"Assertion \"1=2\" failed!"},
    {L"Assert -c1 Volume<1", L"9015:0:13",
        L"Retry: 1|Retry: 2|Assertion \"Volume<1\" failed!|  Environment:Volume=12.5"},
    {L"Assert -q -c1 1=2", L"9015:0:13", L"Assertion \"1=2\" failed!"},
    {L"Assert -c3 1=1", L"0:0:0", L""},
    {L"Assert -c3 1+", L"9015:505:17", L"Operand Expected|1+| ^"},
    {L"Assert -q 1+", L"9015:505:17", L""},
    {L"Assert \"kaka\"", L"9015:505:131", L"Expression cannot be evaluated as a number|\"kaka\"|^"},
    {L"Assert", L"9015:0:1", L""},
    {L"Assert -x 1=1", L"9015:0:2", L""},
    {L"Assert -q1 1=1", L"9015:0:3", L""},
    {L"Assert -c0 1=1", L"9015:0:4", L""},
    {L"Assert -c1000 1=1", L"0:0:0", L""},
    {L"Assert -c1001 1=1", L"9015:0:4", L""},
};

constexpr CommandRow if_lc[] = {
    {L"If 1=1 Then Calc 1 Else Calc 2", L"0:0:0", L"1"},
    {L"IF 1=2 THEN Calc 1 ELSE Calc 2", L"0:0:0", L"2"},
    {L"If 1=2 Then Calc 1", L"0:0:0", L""},
    {L"If \"then\"=\"THEN\" Then Calc \"else\" & 1; Calc 2 ;; Calc -q 1/0; Calc 3", L"0:0:0", L"else1|2|3"},
    {L"If -l, 1=2 Then Calc 1 Else Calc \"b;c\",Calc 2", L"0:0:0", L"b;c|2"},
    {L"If -v 1=1 Then Calc 1;Calc 2 Else Calc 3", L"0:0:0", L"Condition is true - Run: Calc 1;Calc 2|1|2"},
    {L"If -v 1=2 Then Calc 1 Else Calc 2", L"0:0:0", L"Condition is false - Run: Calc 2|2"},
    {L"If -v 1=2 Then Calc 1", L"0:0:0", L"Condition is false - Nothing to run"},
    {L"If 1+kaka Then Calc 1", L"1042:505:48", L"Missing variable: kaka|1+kaka|  ^"},
    {L"If -rPlate7 1=1 Then Calc %E{RecordHeader} & RH_IF", L"0:0:0", L"-rPlate7-rPlate7"},
    {L"If", L"1042:0:1", L""},
    {L"If -x 1=1 Then Calc 1", L"1042:0:2", L""},
    {L"If 1=1", L"1042:0:3", L""},
    {L"If 1=1 Then", L"1042:0:4", L""},
    {L"If 1=1 Then Else Calc 1", L"1042:0:4", L""},
    {L"If 1=1 Then Calc 1 Else", L"1042:0:5", L""},
    {L"If -v1 1=1 Then Calc 1", L"1042:0:6", L""},
    {L"If -r 1=1 Then Calc 1", L"1042:0:7", L""},
    {L"If -r123456789012345678901234567890123 1=1 Then Calc 1", L"1042:0:7", L""},
    {L"If -r12345678901234567890123456789012 1=1 Then Calc 1", L"0:0:0", L"1"},
    {L"If -l;; 1=1 Then Calc 1", L"1042:0:8", L""},
    {L"If -l 1=1 Then Calc 1", L"1042:0:8", L""},
    {L"If 1=1 Then ;", L"0:0:0", L""},
};

constexpr CommandRow set_lc[] = {
    {L"Set -z *", L"0:0:0", L"ErrMsg|ErrPos|RecordHeader|RH_IF|Volume|Deleted 5 variable(s)"},
    {L"Set", L"0:0:0", L"No environment variables defined"},
    {L"Set -z *", L"0:0:0", L"No environment variables defined"},
    {L"Set Alpha=1+1", L"0:0:0", L""},
    {L"Set -v  Pi.2 = PI/2 ", L"0:0:0", L"Pi.2=1.5707963267949"},
    {L"Set -v ALPHA=alpha*2.50", L"0:0:0", L"ALPHA=5"},
    {L"Set -v t=\"%s\" & \" a=b\"", L"0:0:0", L"t=%s a=b"},
    {L"Set alpha", L"0:0:0", L"alpha=5"},
    {L"Set t=", L"0:0:0", L"t=%s a=b"},
    {L"Set", L"0:0:0", L"Name   Value|Alpha  5|Pi.2   1.5707963267949|t      %s a=b"},
    {L"Set ?LPHA*", L"0:0:0", L"Name   Value|Alpha  5"},
    {L"Set z*", L"0:0:0", L"No matching environment variables found"},
    {L"Set -i Alpha=7", L"0:0:0", L""},
    {L"Set -i -v alpha=1/0", L"0:0:0", L"Variable \"alpha\" exists, skip initialization"},
    {L"Set -i -v beta=2", L"0:0:0", L"beta=2"},
    {L"Set -i beta", L"0:0:0", L"beta=2"},
    {L"Set Alpha=1/0", L"1045:505:133", L""},
    {L"Set -v Alpha=1/0", L"1045:505:133", L"Divide by zero|1/0|  ^"},
    {L"Set Alpha", L"0:0:0", L"Alpha=5"},
    {L"Set -z ALPHA", L"0:0:0", L"ALPHA deleted"},
    {L"Set -z Alpha", L"0:0:0", L"Alpha not found"},
    {L"Set -z ?.2", L"0:0:0", L"Deleted 0 variable(s)"},
    {L"Set -z p?.*", L"0:0:0", L"Pi.2|Deleted 1 variable(s)"},
    {L"Set X Y=1", L"1045:0:3", L""},
    {L"Set X\tY", L"1045:0:3", L""},
    {L"Set -x a=1", L"1045:0:2", L""},
    {L"Set a-b=1", L"1045:0:4", L""},
    {L"Set x*=1", L"1045:0:4", L""},
    {L"Set x?=1", L"1045:0:4", L""},
    {L"Set a%s", L"1045:0:4", L""},
    {L"Set nothing", L"1045:0:5", L""},
    {L"Set -v1 x=1", L"1045:0:6", L""},
    {L"Set -i1 x=1", L"1045:0:7", L""},
    {L"Set -z1 x=1", L"1045:0:8", L""},
    {L"Set -z x=1", L"1045:0:9", L""},
};

constexpr CommandRow while_lc[] = {
    {L"Set EC_While=7", L"0:0:0", L""},
    {L"While i<=3 Do Calc i", L"0:0:0", L"1|2|3"},
    {L"Set i", L"0:0:0", L"i=4"},
    {L"Set EC_While", L"1045:0:5", L""},
    {L"Set n=0", L"0:0:0", L""},
    {L"While -c3 InitIfNa(n, 0)>=0 Do Set n=n+i", L"0:0:0", L""},
    {L"Calc n & i", L"0:0:0", L"63"},
    {L"While -v -c1 1=1 Do Calc 1;", L"0:0:0",
        L"Condition is true - Iteration: 1|Run command: Calc 1|1|Max count exceeded"},
    {L"While -v -c1 1=2 Do Calc 1", L"0:0:0", L"Condition is false - Iteration: 1"},
    {L"While -v -c0 1/0 Do Calc 1", L"0:0:0", L"Max count exceeded"},
    {L"While -l, i<2 Do Calc \"a;b\",Calc 2", L"0:0:0", L"a;b|2"},
    {L"While i<3 Do", L"0:0:0", L""},
    {L"While i<3 and 1/(2-i)>0 Do Calc i", L"1064:505:133", L"1|Divide by zero|i<3 and 1/(2-i)>0|            ^"},
    {L"While -er1043:*;5:6:7 i<=2 Do Calc EC_While; Calc -q 1/0; Calc EC_While", L"0:0:0",
        L"0|1043:505:133|0|1043:505:133"},
    {L"Set EC_While", L"0:0:0", L"EC_While=1043:505:133"},
    {L"While -er1,*:505:13? i<=1 Do Calc -q 1/0", L"0:0:0", L""},
    {L"While -er1043:505:13 i<=1 Do Calc 1; Calc -q 1/0; Calc 2", L"1043:505:133", L"1"},
    {L"While -er* 1=2 Do Calc 1", L"0:0:0", L""},
    {L"Set EC_While", L"0:0:0", L"EC_While=0"},
    {L"While -er9015:* i<=1 Do Assert 1=2; Calc EC_While", L"0:0:0", L"Assertion \"1=2\" failed!|9015:0:13"},
    {L"While -rPlate7 -c1 1=1 Do Calc RecordHeader & RH_WHILE", L"0:0:0", L"-rPlate7-rPlate7"},
    {L"While", L"1064:0:1", L""},
    {L"While -x 1=1 Do Calc 1", L"1064:0:2", L""},
    {L"While 1=1", L"1064:0:3", L""},
    {L"While -v1 1=2 Do Calc 1", L"1064:0:6", L""},
    {L"While -r 1=2 Do Calc 1", L"1064:0:7", L""},
    {L"While -c-1 1=2 Do Calc 1", L"1064:0:8", L""},
    {L"While -c2147483647 1=2 Do Calc 1", L"0:0:0", L""},
    {L"While -c2147483648 1=2 Do Calc 1", L"1064:0:8", L""},
    {L"While -l;; 1=2 Do Calc 1", L"1064:0:9", L""},
    {L"While -l 1=2 Do Calc 1", L"1064:0:9", L""},
    {L"While -w0.0009 1=2 Do Calc 1", L"1064:0:10", L""},
    {L"While -w0.001 1=2 Do Calc 1", L"0:0:0", L""},
    {L"While -w86400 1=2 Do Calc 1", L"0:0:0", L""},
    {L"While -w86400.1 1=2 Do Calc 1", L"1064:0:10", L""},
    {L"While -er 1=2 Do Calc 1", L"1064:0:12", L""},
    {L"While -er123456789012345678901234567890 1=2 Do Calc 1", L"0:0:0", L""},
    {L"While -er1234567890123456789012345678901 1=2 Do Calc 1", L"1064:0:12", L""},
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
            Check(row.line, row.exitCode, row.output);
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
