#include "CommandTest.h"

using CalcTest = CommandTest;

TEST_F(CalcTest, PrintsTheValue)
{
    RunSession({
        {"Calc 1+2*3", "7"},
        {"calc   10+5*2+2/4  ", "20.5"},
        {"Calc -5+3", "-2"},
        {"Calc -- -5+3", "-2"},
        {"Calc 0.1+0.2=0.3", "TRUE"},
        {"Calc \"000\" & (120 + 3)", "000123"},
        {"Calc \"a  b\" & \" -v c\"", "a  b -v c"},
        {"Calc \"%s%n%%\"", "%s%n%%"},
        {"Calc \"naïve ±\"", "naïve ±"},
        {"Calc -q 1+2*3", ""},
    });
}

TEST_F(CalcTest, LeavesTheValueInTheReturnString)
{
    for (const wchar_t* line : {L"Calc 2^3^2", L"Calc -q 2^3^2"}) {
        ArrayPipe pipe;
        EXPECT_EQ(CommandRunner::Run(line, pipe, environment, 0).returnString, L"512") << WString(line).ToUtf8();
    }
}

TEST_F(CalcTest, RefusesACommandLine)
{
    RunSession({
        {"Calc", "exit 1043:0:1"},
        {"Calc -q", "exit 1043:0:1"},
        {"Calc -x", "exit 1043:0:1"}, // the arguments are counted before the options are looked at
        {"Calc -help 1", "exit 1043:0:1"},
        {"Calc -h -x 1", "exit 1043:0:1"},
        {"Calc -x 1", "exit 1043:0:2"},
        {"Calc -h -x", "exit 1043:0:2"},
        {"Calc -q1 1", "exit 1043:0:3"},
        {"Calc -help1", "exit 1043:0:4"},
        {"Calc -v1 1", "exit 1043:0:5"},
    });
    EXPECT_EQ(GetVariable("ErrMsg"), "(none)");
}

TEST_F(CalcTest, PointsAtTheErrorUnderTheExpression)
{
    RunSession({
        {"Calc 1+2/*3",
            "Error:\n"
            "  Expecting operand\n"
            "  1+2/*3\n"
            "      ^\n"
            "exit 1043:505:20"},
        {"Calc )",
            "Error:\n"
            "  Operand Expected\n"
            "  )\n"
            "  ^\n"
            "exit 1043:505:19"},
        {"Calc \"%s\"+kaka",
            "Error:\n"
            "  Missing variable: kaka\n"
            "  \"%s\"+kaka\n"
            "       ^\n"
            "exit 1043:505:48"},
        {"Calc -q 10/0", "exit 1043:505:133"},
    });
    EXPECT_EQ(GetFailureMessage("Calc -q 10/0"), "Divide by zero");
}

TEST_F(CalcTest, VerificationModePrintsLinesThatAssertTheError)
{
    RunSession({
        {"Calc -v 10/0",
            "Error:\n"
            "  Divide by zero\n"
            "  10/0\n"
            "     ^\n"
            "Test code:\n"
            "AssertFail 1043:505:133 Calc -v 10/0\n"
            "Assert ErrMsg=\"Divide by zero\" AND ErrPos=4\n"
            "\n"
            "exit 1043:505:133"},
        {"Assert ErrMsg=\"Divide by zero\" AND ErrPos=4", ""},
        {"Calc -v -q )", "exit 1043:505:19"},
        {"Assert ErrMsg=\"Operand Expected\" AND ErrPos=1", ""},
        {"Calc 1+", "Error:\n  Operand Expected\n  1+\n   ^\nexit 1043:505:17"},
        {"Assert ErrPos=1", ""},           // only verification mode writes the variables
        {"Calc -v ErrMsg & ErrPos", "-1"}, // and it does so before the evaluation
        {"Assert ErrMsg=\"\" AND ErrPos=-1", ""},
    });
}

TEST_F(CalcTest, HelpPrintsTheEmbeddedTexts)
{
    const std::string help = Run("Calc -h");
    EXPECT_EQ(help, Run("Calc -HELP"));
    EXPECT_EQ(help.find('\r'), std::string::npos);
    EXPECT_EQ(help.find("Expression syntax\n"), 0u);
    EXPECT_NE(help.find(" -> Error: Divide by zero\n"
                        "\n"
                        "Expression evaluator functions:\n"
                        "  Function names match"),
        std::string::npos);
    EXPECT_NE(help.find("\n abs(x) - "), std::string::npos);
    EXPECT_TRUE(help.ends_with("\nExpression evaulator operators:\n"
                               " and, or, xor, =, >, <, <>, >=, <=, +, -, &, *, /, ^"));
}
