#include "CommandTest.h"
#include "Services/System.h"

using IfTest = CommandTest;

TEST_F(IfTest, RunsOneOfTheLists)
{
    System::status.TryAdd(L"VersionProductName", ST_String, L"OrvaneX9");
    RunSession({
        {"IF %S{VersionProductName}=\"OrvaneX9\" THEN SAY Ok ELSE SAY Fail", "Ok"},
        {"IF \"%S{VersionProductName}\"=\"OrvaneX9\" THEN SAY Fail ELSE SAY Ok", "Ok"},
        {"IF %S{VersionProductName} = \"OrvaneX9\" THEN SAY It's ok ELSE SAY It failed", "It's ok"},
        {"If \"then\"=\"THEN\" then Say \"else\" done Else Say no", "else done"},
        {"Set SII=2011", ""},
        {"IF %E{SII} * 3 < 6000 THEN SET SII=%E{SII} / 2 ELSE SET SII=%E{SII}*3", ""},
        {"Set SII", "SII=6033"},
        {"Set SII=2011", ""},
        {"IF SII + 1 > 6000 THEN SET X=2 ^ 2 + 1", ""},
        {"IF ISNA(X) THEN SAY Ok", "Ok"},
        {"IF ISNA(%E{X}) THEN SAY Ok", "Ok"},
        {"Set X=1", ""},
        {"IF NOT(ISNA( X)) THEN SAY Ok", "Ok"},
        {"IF NOT(ISNA(%E{X} )) THEN SAY Ok", "Ok"},
        {"Set a=10", ""},
        {"Set b=20", ""},
        {"Set c=14", ""},
        {"IF Avg( Max(A, b , c), Min( a,b, c ) ) + SUM( MIN(a,b,c), MAX(a,b,c) ) = 45 THEN SAY Ok", "Ok"},
    });
}

TEST_F(IfTest, RunsEveryCommandOfAListAndSucceeds)
{
    RunSession({
        {"If 1=1 Then Fail 5:6:7; Say a b ;; Nonsense; Say c", "a b\nc"},
        {"If 1=1 Then Say \"a;b\"; Say c", "a;b\nc"},
        {"If -l, 1=2 Then Say a Else Say b;c,Say d", "b;c\nd"},
        {"If 1=1 Then Flags", "0x100"},
        {"If 1=1 Then If 1=2 Then Say a", ""},
        {"If 1=1 Then Set x=\"ELSE\"; Set -v y=x & \" THEN \"", "y=ELSE THEN "},
    });
}

TEST_F(IfTest, ChecksTheStatementBeforeTheOptions)
{
    RunSession({
        {"If", "exit 1042:0:1"},
        {"If -v", "exit 1042:0:1"},
        {"If -x 1=1", "exit 1042:0:3"},
        {"If -x 1=1 Then", "exit 1042:0:4"},
        {"If -x 1=1 Then Else Say a", "exit 1042:0:4"},
        {"If -x 1=1 Then Say a Else", "exit 1042:0:5"},
        {"If -x 1=1 Then Say a", "exit 1042:0:2"},
        {"If -v1 1=1 Then Say a", "exit 1042:0:6"},
        {"If -r 1=1 Then Say a", "exit 1042:0:7"},
        {"If -l;; 1=1 Then Say a", "exit 1042:0:8"},
        {"If 1=1 Then ;", "exit 1042:0:9"},
    });
    EXPECT_EQ(GetFailureMessage("If 1=1"), "THEN is missing");
}

TEST_F(IfTest, LimitsTheLists)
{
    std::string list;
    std::string output;
    for (int count = 0; count < 100; ++count) {
        list += "Say x;";
        output += count == 0 ? "x" : "\nx";
    }
    EXPECT_EQ(Run(("If 1=1 Then " + list).c_str()), output);
    EXPECT_EQ(Run(("If 1=1 Then " + list + "Say x").c_str()), "exit 1042:0:9");
    const std::string longest(4092, 'x');
    EXPECT_EQ(Run(("If 1=1 Then Say " + longest).c_str()), longest);
    EXPECT_EQ(Run(("If 1=1 Then Say x" + longest).c_str()), "exit 1042:0:9");
}

TEST_F(IfTest, VerboseTellsWhatItRuns)
{
    RunSession({
        {"If -v 1=1 Then Say %d;Say b Else Say c", "Condition is true - Run: Say %d;Say b\n%d\nb"},
        {"If -v 1=2 Then Say a Else Say %n", "Condition is false - Run: Say %n\n%n"},
        {"If -v 1=2 Then Say a", "Condition is false - Nothing to run"},
    });
}

TEST_F(IfTest, AnErrorInTheConditionGoesToTheOutputOrTheLog)
{
    StartSystem();
    RunSession({
        {"If 1+kaka=\"%s\" Then Say a Else Say b", "Missing variable: kaka\n1+kaka=\"%s\"\n  ^\nexit 1042:505:48"},
        {"If -v 1+kaka=\"%s\" Then Say a Else Say b", "exit 1042:505:48"},
        {"If -v 5*2 Then Say a Else Say b", "Condition is false - Run: Say b\nb"},
    });
    EXPECT_EQ(ReadErrorLog(), "**IF Failure: Missing variable: kaka\n1+kaka=\"%s\"\n  ^\n");
    EXPECT_EQ(GetFailureMessage("If -v 1+kaka Then Say a"), "Missing variable: kaka");
}

TEST_F(IfTest, InheritsTheRecordHeader)
{
    RunSession({
        {"If -rPlate7 1=1 Then Say [%E{RecordHeader}] [%E{RH_IF}]", "[-rPlate7] [-rPlate7]"},
        {"If -R8 1=2 Then", "exit 1042:0:4"},
        {"Set RH_IF", "RH_IF=-r8"},
    });
}

TEST_F(IfTest, DeepNestingIsRefused)
{
    const auto nested = [](int depth) {
        std::string line;
        for (int level = 0; level < depth; ++level)
            line += "If 1=1 Then ";
        return line + "Say a";
    };
    EXPECT_EQ(Run(nested(63).c_str()), "a");
    EXPECT_EQ(Run(nested(64).c_str()), "exit 1042:1:3");
    EXPECT_EQ(Run(nested(1000).c_str()), "exit 1042:0:9"); // its command list is too long for one command
}
