#include "CommandTest.h"
#include "Services/Abort.h"
#include "Services/System.h"

#include <gmock/gmock.h>

using AssertTest = CommandTest;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(AssertTest, FailsUnlessTheExpressionIsTrue)
{
    RunSession({
        {"Assert 1=1", ""},
        {"Assert \"true\"", ""},
        {"Assert 1=2", "Assertion \"1=2\" failed!\nexit 9015:0:13"},
        {"Assert -q 1=2", "Assertion \"1=2\" failed!\nexit 9015:0:13"},
        {"Assert \"%s%n\"=\"\"", "Assertion \"\"%s%n\"=\"\"\" failed!\nexit 9015:0:13"},
        {"Assert 1+", "Operand Expected\n1+\n ^\nexit 9015:505:17"},
        {"Assert -q 1+", "exit 9015:505:17"},
        {"Assert \"kaka\"", "Expression cannot be evaluated as a number\n\"kaka\"\n^\nexit 9015:505:131"},
        {"Assert", "exit 9015:0:1"},
        {"Assert -x", "exit 9015:0:1"},
        {"Assert -x 1=1", "exit 9015:0:2"},
        {"Assert -q1 1=1", "exit 9015:0:3"},
        {"Assert -c0 1=1", "exit 9015:0:4"},
        {"Assert -c1001", "exit 9015:0:4"}, // the options are read before the arguments are counted
        {"Assert -c2.5 1=1", "exit 9015:0:4"},
    });
    EXPECT_THAT(clock.waits, IsEmpty());
    EXPECT_EQ(GetFailureMessage("Assert 1=2"), "Assertion \"1=2\" failed!");
}

TEST_F(AssertTest, ListsTheVariablesThatWereRead)
{
    environment.SetString(L"Volume", L"12.5");
    environment.SetString(L"Mode", L"%s%n");
    RunSession({
        {"Assert Volume>Max(13, %E{Volume}) or %E{mode}=\"x\"",
            "Assertion \"Volume>Max(13, %E{Volume}) or %E{mode}=\"x\"\" failed!\n"
            "  Environment:Volume=12.5\n"
            "  Environment:Volume=12.5\n"
            "  Environment:mode=%s%n\n"
            "  Function:max=13\n"
            "exit 9015:0:13"},
    });
}

TEST_F(AssertTest, RetriesWithAPauseAfterEachFalseEvaluation)
{
    EXPECT_EQ(Run("Assert -c2 1=2"), "Retry: 1\nRetry: 2\nRetry: 3\nAssertion \"1=2\" failed!\nexit 9015:0:13");
    EXPECT_THAT(clock.waits, ElementsAre(100, 100, 100));
    EXPECT_EQ(Run("Assert -q -c1 1=2"), "Assertion \"1=2\" failed!\nexit 9015:0:13");
    EXPECT_THAT(clock.waits, ElementsAre(100, 100, 100, 100, 100));
}

TEST_F(AssertTest, SucceedsAtTheAttemptThatIsTrue)
{
    environment.SetString(L"Ready", L"false");
    clock.onSleep = [this] { environment.SetString(L"Ready", L"true"); };
    EXPECT_EQ(Run("Assert -c5 Ready"), "Retry: 1");
    EXPECT_THAT(clock.waits, ElementsAre(100));
}

TEST_F(AssertTest, ReportsTheVariablesOfTheLastAttemptOnly)
{
    environment.SetString(L"n", L"1");
    clock.onSleep = [this] { environment.SetString(L"n", L"2"); };
    EXPECT_EQ(Run("Assert -q -c1 n>5"), "Assertion \"n>5\" failed!\n  Environment:n=2\nexit 9015:0:13");
}

TEST_F(AssertTest, DoesNotRetryWhatCannotBeEvaluated)
{
    environment.SetString(L"n", L"1");
    clock.onSleep = [this] { environment.TryDelete(L"n"); };
    RunSession({
        {"Assert -c3 1+", "Operand Expected\n1+\n ^\nexit 9015:505:17"},
        {"Assert -c3 n>5", "Retry: 1\nMissing variable: n\nn>5\n^\nexit 9015:505:48"},
    });
    EXPECT_THAT(clock.waits, ElementsAre(100));
}

TEST_F(AssertTest, AnAbortEndsTheRetries)
{
    clock.onSleep = Abort::Request;
    EXPECT_EQ(Run("Assert -c100 1=2"), "Retry: 1\nexit 9015:1:4");
}

TEST_F(AssertTest, LogsItsFailures)
{
    StartSystem();
    environment.SetString(L"Mode", L"%s%n");
    Run("Assert -c1 Mode=\"%d\"");
    Run("Assert -q 1=2");
    Run("Assert 1+");
    Run("Assert -q 1+");
    EXPECT_EQ(ReadErrorLog(),
        "Assertion \"Mode=\"%d\"\" failed!\n"
        "  Environment:Mode=%s%n\n"
        "Assertion \"1=2\" failed!\n"
        "Operand Expected\n"
        "1+\n"
        " ^\n");
}

TEST_F(AssertTest, LogsNothingWhenToldSo)
{
    StartSystem();
    Run("Assert 1=2", CommandFlags::noFailureLog);
    System::config.SetString(L"Debug", L"LogAssertFail", L"false");
    Run("Assert 1=2");
    Run("Assert 1+");
    EXPECT_EQ(ReadErrorLog(), "");

    System::config.SetString(L"Debug", L"LogAssertFail", L"perhaps");
    EXPECT_EQ(Run("Assert 1=1"), "exit 9015:0:20");
    System::config.TryDelete(L"Debug", L"LogAssertFail");
}
