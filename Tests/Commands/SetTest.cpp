#include "CommandTest.h"
#include "SetCommand.h"

#include <memory>

using SetTest = CommandTest;

TEST_F(SetTest, AssignsTheTextOfTheResult)
{
    RunSession({
        {"Set x=1+1", ""},
        {"Set x", "x=2"},
        {"Set -v  Pi.2 = PI/2 ", "Pi.2=1.5707963267949"},
        {"Set -v x=1.50", "x=1.50"},
        {"Set -v X=x*2", "X=3"},
        {"Set -v b=x=3", "b=TRUE"},
        {"Set -v t=\"%s%n\" & \" a=b\"", "t=%s%n a=b"},
        {"Set t=", "t=%s%n a=b"},
        {"Set -v =\"no name\"", "=no name"},
    });
    EXPECT_EQ(GetVariable(""), "no name");
}

TEST_F(SetTest, AFailingExpressionLeavesTheVariable)
{
    RunSession({
        {"Set x=5", ""},
        {"Set x=1/0", "exit 1045:505:133"},
        {"Set -v x=\"%s\"/0", "Divide by zero\n\"%s\"/0\n     ^\nexit 1045:505:133"},
        {"Set x", "x=5"},
    });
    EXPECT_EQ(GetFailureMessage("Set x=1/0"), "Divide by zero");
}

TEST_F(SetTest, RefusesACommandLine)
{
    RunSession({
        {"Set X Y=1", "exit 1045:0:3"},
        {"Set X\tY", "exit 1045:0:3"},
        {"Set x -v", "exit 1045:0:3"}, // options stand before the argument
        {"Set a-b=1", "exit 1045:0:4"},
        {"Set a%s", "exit 1045:0:4"},
        {"Set x*=1", "exit 1045:0:4"},
        {"Set x?=1", "exit 1045:0:4"},
        {"Set é=1", "exit 1045:0:4"},
        {"Set -q a-b=1", "exit 1045:0:4"},
        {"Set -q x=1", "exit 1045:0:2"},
        {"Set nothing", "exit 1045:0:5"},
        {"Set -v1 x=1", "exit 1045:0:6"},
        {"Set -i1 x=1", "exit 1045:0:7"},
        {"Set -z1 x=1", "exit 1045:0:8"},
        {"Set -z x=1", "exit 1045:0:9"},
        {"Set", "No environment variables defined"},
    });
    EXPECT_EQ(GetFailureMessage("Set nothing"), "No such variable: nothing");
}

TEST_F(SetTest, RefusesTwoArguments)
{
    const std::unique_ptr<CommandBase> command(CreateCommandSetCommand());
    ArgumentList arguments(WStringArray{L"x", L"y"});
    Options options;
    EXPECT_EQ(command->Main(arguments, options), ExitCode(1));
}

TEST_F(SetTest, InitializesOnlyWhatDoesNotExist)
{
    RunSession({
        {"Set -i x=1", ""},
        {"Set -i X=2", ""},
        {"Set -i x=1/0", ""},
        {"Set -i -v x=2", "Variable \"x\" exists, skip initialization"},
        {"Set -i -v y=2", "y=2"},
        {"Set -i x", "x=1"},
        {"Set -i -z x=2", "exit 1045:0:9"},
        {"Set x", "x=1"},
    });
}

TEST_F(SetTest, DeletesAVariable)
{
    RunSession({
        {"Set x=1", ""},
        {"Set -z X", "X deleted"},
        {"Set -z x", "x not found"},
        {"Set -z x=", "x not found"},
    });
}

TEST_F(SetTest, ListsByPattern)
{
    RunSession({
        {"Set", "No environment variables defined"},
        {"Set a*", "No environment variables defined"},
        {"Set -z *", "No environment variables defined"},
        {"Set beta=\"%d\"", ""},
        {"Set Alpha=1", ""},
        {"Set alphabet=\"abc\"", ""},
        {"Set", "Name      Value\nAlpha     1\nalphabet  abc\nbeta      %d"},
        {"Set -v -i", "Name      Value\nAlpha     1\nalphabet  abc\nbeta      %d"},
        {"Set ?LPHA*", "Name      Value\nAlpha     1\nalphabet  abc"},
        {"Set z*", "No matching environment variables found"},
    });
}

TEST_F(SetTest, DeletesByPattern)
{
    RunSession({
        {"Set b2=1", ""},
        {"Set A2=1", ""},
        {"Set c=1", ""},
        {"Set -z ?3", "Deleted 0 variable(s)"},
        {"Set -z ?2", "A2\nb2\nDeleted 2 variable(s)"},
        {"Set", "Name  Value\nc     1"},
    });
}
