#include "While.h"
#include "CommandTest.h"
#include "Services/Abort.h"
#include "Services/System.h"

#include <gmock/gmock.h>

using WhileTest = CommandTest;
using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(WhileTest, RunsTheListWhileTheConditionHolds)
{
    RunSession({
        {"WHILE i<=3 DO SAY %E{i}", "1\n2\n3"},
        {"Set i", "i=4"},
        {"SET loopIndex=1", ""},
        {"WHILE loopIndex<=3 DO SAY %E{loopIndex}; SET loopIndex=loopIndex+1", "1\n2\n3"},
        {"While 1=2 Do Say a", ""},
        {"Set i", "i=1"},
        {"While -l, i<3 Do Say a;b,Say c", "a;b\nc\na;b\nc"},
        {"While i<3 Do", ""},
        {"While i<2 Do Flags", "0x100"},
        {"While -er* i<2 Do Flags", "0x801"},
    });
    EXPECT_THAT(clock.waits, IsEmpty());
}

TEST_F(WhileTest, StopsAtTheMaximumCount)
{
    RunSession({
        {"Set n=0", ""},
        {"While -c3 InitIfNa(n, 0)>=0 Do Set n=n+1", ""},
        {"Set *", "Name  Value\ni     3\nn     3"},
        {"While -v -c1 1=1 Do Say a", "Condition is true - Iteration: 1\nRun command: Say a\na\nMax count exceeded"},
        {"While -c0 1/0 Do Say a", ""},
        {"While -v -c0 1/0 Do Say a", "Max count exceeded"},
        {"While -v -c1 1=2 Do Say a", "Condition is false - Iteration: 1"},
    });
}

TEST_F(WhileTest, WaitsAfterEachIteration)
{
    Run("While -w0.0015 i<3 Do Say");
    EXPECT_THAT(clock.waits, ElementsAre(1, 1));
    Run("While -w86400 -c1 1=1 Do Say");
    Run("While -w2.5 1=2 Do Say");
    EXPECT_THAT(clock.waits, ElementsAre(1, 1, 86400000));
}

TEST_F(WhileTest, ChecksTheStatementBeforeTheOptions)
{
    RunSession({
        {"While", "exit 1064:0:1"},
        {"While -c-1", "exit 1064:0:1"},
        {"While -x 1=1", "exit 1064:0:3"},
        {"While -x 1=1 Do ;", "exit 1064:0:11"},
        {"While -x 1=1 Do Say a", "exit 1064:0:2"},
        {"While -v1 1=2 Do Say a", "exit 1064:0:6"},
        {"While -r 1=2 Do Say a", "exit 1064:0:7"},
        {"While -c-1 1=2 Do Say a", "exit 1064:0:8"},
        {"While -c2147483648 1=2 Do Say a", "exit 1064:0:8"},
        {"While -c2147483647 1=2 Do Say a", ""},
        {"While -l 1=2 Do Say a", "exit 1064:0:9"},
        {"While -w0.0005 1=2 Do Say a", "exit 1064:0:10"},
        {"While -w86400.1 1=2 Do Say a", "exit 1064:0:10"},
        {"While -er 1=2 Do Say a", "exit 1064:0:12"},
        {"While -er1234567890:1234567890:123456789 1=2 Do Say a", "exit 1064:0:12"},
    });
    EXPECT_EQ(GetFailureMessage("While 1=1"), "DO is missing");
}

TEST_F(WhileTest, AFailingCommandEndsTheLoop)
{
    StartSystem();
    RunSession({
        {"Set EC_While=\"old\"", ""},
        {"While 1=2 Do Say a", ""},
        {"Set -z EC_While", "EC_While not found"},
        {"While 1=1 Do Say a; Fail 5:6:7; Say b", "a\nexit 5:6:7"},
        {"Set EC_While", "EC_While=5:6:7"},
        {"Set i", "i=1"},
        {"While -er9015:*,5:6:? 1=1 Do Fail 5:6:77", "exit 5:6:77"},
    });
    EXPECT_EQ(Run("While 1=1 Do Fail 8:8:8", CommandFlags::noFailureLog), "exit 8:8:8");
    EXPECT_EQ(ReadErrorLog(), "5:6:7        Fail 5:6:7\n5:6:77       Fail 5:6:77\n");
    EXPECT_EQ(GetFailureMessage("While 1=1 Do Fail 5:6:7"), "Failed: Fail 5:6:7");
}

TEST_F(WhileTest, IgnoredCodesAreLeftInAVariable)
{
    RunSession({
        {"While -er9015:*;5:6:7 i<=2 Do Say %E{EC_While}; Assert 1=2; Say %E{EC_While}; Fail 5:6:7; Say %E{EC_While}",
            "0\nAssertion \"1=2\" failed!\n9015:0:13\n5:6:7\n"
            "0\nAssertion \"1=2\" failed!\n9015:0:13\n5:6:7"},
        {"WHILE -c10 -er9015:* i<=10 DO Assert -q i > 8",
            "Assertion \"i > 8\" failed!\n  Environment:i=1\nAssertion \"i > 8\" failed!\n  Environment:i=2\n"
            "Assertion \"i > 8\" failed!\n  Environment:i=3\nAssertion \"i > 8\" failed!\n  Environment:i=4\n"
            "Assertion \"i > 8\" failed!\n  Environment:i=5\nAssertion \"i > 8\" failed!\n  Environment:i=6\n"
            "Assertion \"i > 8\" failed!\n  Environment:i=7\nAssertion \"i > 8\" failed!\n  Environment:i=8"},
        {"Set EC_While", "EC_While=0"},
        {"WHILE -c5 -er*:100:32 i<=1 OR EC_While<>\"0\" DO Fail 1:100:32", ""},
        {"Set i", "i=5"},
    });
}

TEST_F(WhileTest, MatchesExitCodesAsText)
{
    const WStringArray patterns{L"9015:*", L"*:100:32", L"1:?:3"};
    EXPECT_TRUE(While::IsExitCodeIgnored(ExitCode(9015, 0, 13), patterns));
    EXPECT_TRUE(While::IsExitCodeIgnored(ExitCode(7, 100, 32), patterns));
    EXPECT_TRUE(While::IsExitCodeIgnored(ExitCode(1, 2, 3), patterns));
    EXPECT_FALSE(While::IsExitCodeIgnored(ExitCode(1, 22, 3), patterns));
    EXPECT_FALSE(While::IsExitCodeIgnored(ExitCode(9015, 1, 1), WStringArray{L"901:*"}));
    EXPECT_FALSE(While::IsExitCodeIgnored(ExitCode(1, 2, 3), WStringArray{}));
}

TEST_F(WhileTest, AnErrorInTheConditionGoesToTheOutputOrTheLog)
{
    StartSystem();
    RunSession({
        {"While i<3 and 1/(2-i)>0 Do Say %E{i}",
            "1\nDivide by zero\ni<3 and 1/(2-i)>0\n            ^\nexit 1064:505:133"},
        {"While -v 1/0 Do Say a", "exit 1064:505:133"},
    });
    EXPECT_EQ(ReadErrorLog(), "**IF Failure: Divide by zero\n1/0\n  ^\n");
}

TEST_F(WhileTest, InheritsTheRecordHeader)
{
    RunSession({{"While -rPlate7 -c1 1=1 Do Say [%E{RecordHeader}] [%E{RH_WHILE}]", "[-rPlate7] [-rPlate7]"}});
}

TEST_F(WhileTest, AnAbortEndsTheLoop)
{
    clock.onSleep = Abort::Request;
    EXPECT_EQ(Run("While -w1 -er* 1=1 Do Say a"), "a\nexit 1064:1:4");
    Abort::Clear();
    EXPECT_EQ(Run("While -er* 1=1 Do Assert -q -c9 1=2; Say a"), "exit 9015:1:4");
    Abort::Clear();
    // without a command the loop itself looks for it
    System::status.AddLive(L"AbortNow", ST_Bool, [] {
        Abort::Request();
        return L"true";
    });
    EXPECT_EQ(Run("While %S{AbortNow} Do"), "exit 1064:1:4");
    EXPECT_EQ(GetVariable("i"), "1");
}
