#include "CommandTest.h"
#include "Commands/CommandRegistry.h"
#include "Commands/TestCommand.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorTester.h"
#include "Support/HostTexts.h"

namespace {
class HelpTest : public CommandTest
{
protected:
    static std::string GetUsage(const wchar_t* command)
    {
        ArrayPipe pipe;
        CommandRunner::ShowUsage(*CommandRegistry::FindOrNull(command), pipe);
        return Join(pipe.lines);
    }
};

std::string GetHelpBlock(bool environment, const wchar_t* operatorsTitle, const wchar_t* functionsTitle)
{
    ArrayPipe pipe;
    ExpressionEvaluator::DisplaySupportedOperatorsAndFunctionsHelpText(
        pipe, environment, operatorsTitle, functionsTitle);
    return Join(pipe.lines);
}
} // namespace

TEST_F(HelpTest, BlockListsOperatorsAndFunctions)
{
    const std::string common = R"(Operators %s %%
 and, or, xor, =, >, <, <>, >=, <=, +, -, &, *, /, ^
Functions
 abs, acos, asin, atan, Average, Avg, Bool, ceil, Config, cos, cosh, CStr
 DateToDays, DaysToDate, Defined, EndsWith, Exist, exp, Fcvt, FileCrc
 FileExist, FileSize, FileZynqChecksum, floor, FmtEng, FromHex, Ftoa
 GetConfig, GetConfigBool, GetConfigDbl, GetConfigInt, GetConfigStr
 GetConfigUInt, GetEnv, GetEvent, GetProcId, GetStatus, GetUsage, Icpt, IF
 IndexOf, InitIfNa, InStr, int, Intercept, IsErr, IsError, IsInList, IsNA
 IsRunning, LCase, Left, Len, ListItem, ListLen, ln, log, Matches, Max, Med
 Median, Mid, Min, Mod, Not, Rand, Random, Right, Round, Sd, sign, sin, sinh
 Slope, sqr, sqrt, StartsWith, StDev, StrCat, StrReplace, SubString, Sum, tan
 tanh, ToHex, ToString, UCase, Val, VersionCompare
Run: "CALC -help" for a description of the expression evaluator and
 the supported functions.
To fetch different instrument information use:
 %S{statusItem}     - to fetch a status value.
 %C{[section]key}   - to fetch a configuration file value.
 %U{usageItem}      - to fetch a usage log value.)";
    const std::string environment = R"(
 %E{variableName}   - to fetch an environment variable value.
 variableName       - to fetch an environment variable value.)";
    EXPECT_EQ(GetHelpBlock(false, L"Operators %s %%", L"Functions"), common);
    EXPECT_EQ(GetHelpBlock(true, L"Operators %s %%", L"Functions"), common + environment);
}

TEST_F(HelpTest, UsagesAreFilledIn)
{
    const struct
    {
        const wchar_t* command;
        const char* lines;
        const wchar_t* operatorsTitle;
        const wchar_t* functionsTitle;
    } cases[] = {
        {L"Assert", "\n Example: Assert %S{HotelDoorOpen}=true\n", L"Supported operators:", L"Supported functions:"},
        {L"Calc",
            "\n          \"Current Date Is: \" & %S{InfoDate}\n"
            "          Rand(1, 100)\n",
            L"Supported operators:", L"Supported functions:"},
        {L"Calc",
            "\n -v     Verification mode, update the environment variables ErrMsg &\n"
            "         ErrPos with the error message and offending character position\n"
            "         in the expression on failure. If successful ErrMsg=\"\" and\n"
            "         ErrPos=-1. Used for automatic testing.\n\n",
            L"Supported operators:", L"Supported functions:"},
        {L"If",
            "\n         conditionally started command through the %E{RecordHeader} or\n"
            "          %E{RH_IF} variable.\n\n",
            L"Supported operators in the condition:", L"Supported functions in the condition:"},
        {L"Set", "Usage: Set [<VariableName>[=<expression>]] [<options>]\n", L"Supported operators in the expression:",
            L"Supported functions in the expression:"},
        {L"While",
            "\n         conditionally started command through the %E{RecordHeader} or\n"
            "          %E{RH_WHILE} variable.\n\n",
            L"Supported operators in the condition:", L"Supported functions in the condition:"},
    };
    for (const auto& row : cases) {
        const std::string usage = GetUsage(row.command);
        EXPECT_NE(usage.find(row.lines), std::string::npos) << usage;
        EXPECT_TRUE(usage.ends_with("\n" + GetHelpBlock(true, row.operatorsTitle, row.functionsTitle))) << usage;
        EXPECT_EQ(usage.find("%%"), std::string::npos) << usage;
    }
}

TEST_F(HelpTest, SelfTestPasses)
{
    TestCommand test(environment);
    RunExpressionEvaluatorTests(test);
    EXPECT_GT(test.GetCheckCount(), 60u);
    for (const WString& failure : test.GetFailures())
        ADD_FAILURE() << failure.ToUtf8();
}
