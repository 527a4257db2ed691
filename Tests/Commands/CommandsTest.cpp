// What a session cannot show: waits, what happens meanwhile, aborts, the return string, and long lines.

#include "CommandTest.h"
#include "Commands/TestCommand.h"
#include "Instrument/System.h"
#include "SelfTest.h"
#include "SetCommand.h"
#include "Support/HostTexts.h"
#include "Text/Abort.h"

#include <gmock/gmock.h>
#include <memory>

TEST_F(CommandTest, AssertAndWhileWaitAfterEachAttempt)
{
    EXPECT_EQ(Run("Assert -c2 1=2"),
        "Retry: 1\nRetry: 2\nRetry: 3\nAssertion \"1=2\" failed!\nexit 9015:0:13 Assertion \"1=2\" failed!");
    Run("While -w0.0015 i<3 Do Say");
    Run("While -w86400 -c1 1=1 Do Say");
    Run("While -w2.5 1=2 Do Say");
    EXPECT_THAT(clock.waits, testing::ElementsAre(100, 100, 100, 1, 1, 86400000));
}

TEST_F(CommandTest, AssertLooksAtTheVariablesOfEachAttemptAnew)
{
    environment.SetString(L"n", L"1");
    clock.onSleep = [this] { environment.SetString(L"n", L"2"); };
    EXPECT_EQ(Run("Assert -q -c1 n>5"),
        "Assertion \"n>5\" failed!\n  Environment:n=2\nexit 9015:0:13 Assertion \"n>5\" failed!");
    environment.SetString(L"n", L"1");
    EXPECT_EQ(Run("Assert -c5 n=2"), "Retry: 1");
    clock.onSleep = [this] { environment.TryDelete(L"n"); };
    EXPECT_EQ(Run("Assert -c3 n>5"), "Retry: 1\nMissing variable: n\nn>5\n^\nexit 9015:505:48 Missing variable: n");
}

TEST_F(CommandTest, FailuresAreNotLoggedWhenToldSo)
{
    Run("Assert 1=2", CommandFlags::noFailureLog);
    Run("While 1=1 Do Fail 8:8:8", CommandFlags::noFailureLog);
    System::config.SetString(L"Debug", L"LogAssertFail", L"false");
    Run("Assert 1=2");
    Run("Assert 1+");
    Run("Assert FileSize(\"/\")=1");
    EXPECT_EQ(Run("Log"), "");
    System::config.SetString(L"Debug", L"LogAssertFail", L"perhaps");
    EXPECT_THAT(Run("Assert 1=1"), testing::StartsWith("exit 9015:0:20"));
}

TEST_F(CommandTest, CalcLeavesTheValueInTheReturnString)
{
    ArrayPipe pipe;
    EXPECT_EQ(CommandRunner::Run(L"Calc 2^3^2", pipe, environment, 0).returnString, L"512");
    EXPECT_EQ(CommandRunner::Run(L"Calc -q 2^3^2", pipe, environment, 0).returnString, L"512");
}

TEST_F(CommandTest, CalcHelpPrintsTheEmbeddedTexts)
{
    const std::string help = Run("Calc -h");
    EXPECT_EQ(help, Run("Calc -HELP"));
    EXPECT_EQ(help.find('\r'), std::string::npos);
    EXPECT_TRUE(help.starts_with("Expression syntax\n"));
    EXPECT_THAT(help, testing::HasSubstr(" -> Error: Divide by zero\n\nExpression evaluator functions:\n  Function"));
    EXPECT_TRUE(help.ends_with("\nExpression evaulator operators:\n"
                               " and, or, xor, =, >, <, <>, >=, <=, +, -, &, *, /, ^"));
}

TEST_F(CommandTest, IfAndWhileLimitTheirLists)
{
    const std::string longest(4092, 'x');
    for (const auto& [statement, exit] :
        {std::pair("If 1=1 Then ", "exit 1042:0:9 "), {"While i<2 Do ", "exit 1064:0:11 "}}) {
        const std::string refused = exit + std::string("More than 100 commands, or one of more than 4096 characters");
        EXPECT_EQ(Run(statement + Repeat("Say x;", 100)) + "\n", Repeat("x\n", 100));
        EXPECT_EQ(Run(statement + Repeat("Say x;", 101)), refused);
        EXPECT_EQ(Run(statement + ("Say " + longest)), longest);
        EXPECT_EQ(Run(statement + ("Say x" + longest)), refused);
    }
    const std::pair<std::string, bool> patterns[] = {{Repeat("1,", 99) + "7*", true}, {Repeat("1,", 100) + "7*", false},
        {Repeat(",", 999) + "*", true}, {Repeat(",", 1000) + "*", false}};
    for (const auto& [list, serves] : patterns)
        EXPECT_EQ(Run("While -er" + list + " i<2 Do Fail 7:7:7").substr(0, 14), serves ? "" : "exit 1064:0:12");
}

TEST_F(CommandTest, IfLimitsTheNesting)
{
    EXPECT_EQ(Run(Repeat("If 1=1 Then ", 63) + "Say a"), "a");
    EXPECT_THAT(Run(Repeat("If 1=1 Then ", 64) + "Say a"), testing::StartsWith("exit 1042:1:3"));
    EXPECT_THAT(Run(Repeat("If 1=1 Then ", 1000) + "Say a"), testing::StartsWith("exit 1042:0:9")) << "too long a list";
}

TEST_F(CommandTest, SetRefusesTwoArguments)
{
    ArgumentList arguments(WStringArray{L"x", L"y"});
    Options options;
    EXPECT_EQ(std::unique_ptr<CommandBase>(CreateCommandSetCommand())->Main(arguments, options), ExitCode(1));
}

TEST_F(CommandTest, AnAbortEndsRetriesAndLoops)
{
    const auto runAborted = [this](const std::string& line) {
        Abort::Clear();
        return Run(line);
    };
    clock.onSleep = Abort::Request;
    EXPECT_EQ(runAborted("Assert -c100 1=2"), "Retry: 1\nexit 9015:1:4 Aborted");
    EXPECT_EQ(runAborted("While -w1 -er* 1=1 Do Say a"), "a\nexit 1064:1:4 Aborted");
    EXPECT_EQ(runAborted("While -er* 1=1 Do Assert -q -c9 1=2; Say a"), "exit 9015:1:4 Aborted");
    // without a command the loop itself looks for it
    System::status.AddLive(L"AbortNow", ST_Bool, [] {
        Abort::Request();
        return L"true";
    });
    EXPECT_EQ(runAborted("While %S{AbortNow} Do"), "exit 1064:1:4 Aborted");
    EXPECT_EQ(environment.GetString(L"i", 1), L"1");
    System::status.AddLive(L"AbortNow", ST_Bool, [] { return L"false"; });
}

TEST_F(CommandTest, HostFailuresAreReportedWithTheirReason)
{
    const std::string reason = " File error: /: Is a directory";
    EXPECT_EQ(Run("Calc FileSize(\"/\")"),
        "Error:\n  #Error: 0:1:10\n  FileSize(\"/\")\n          ^\nexit 1043:1:10" + reason);
    EXPECT_EQ(Run("Log"), "1043:1:10   " + reason);
    EXPECT_EQ(Run("Set x=FileSize(\"/\")"), "exit 1045:1:10" + reason);
    EXPECT_EQ(Run("Log"), "1045:1:10   " + reason);
    Run("Calc FileSize(\"/\")", CommandFlags::noFailureLog);
    EXPECT_EQ(Run("Log"), "");
}

TEST_F(CommandTest, SelfTestPasses)
{
    TestCommand test(environment);
    RunExpressionEvaluatorTests(test);
    EXPECT_GT(test.GetCheckCount(), 1000u);
    EXPECT_THAT(test.GetFailures(), testing::IsEmpty());
}
