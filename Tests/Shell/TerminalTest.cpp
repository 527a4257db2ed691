#include "Shell/AtTerminal.h"

#include <gtest/gtest.h>

#include <csignal>

namespace {
constexpr const char* continuation = "  ...> ";
} // namespace

TEST(TerminalTest, FailuresAndInterruptsEndTheCommandAlone)
{
    const TemporaryFolder folder;
    AtPrompt session(folder.GetPath());
    EXPECT_NE(session.Type("Echo h\u00E9\u20ACllo\r").find("\nh\u00E9\u20ACllo\r\n"), std::string::npos);
    EXPECT_EQ(session.Run("Echo \"a\xC3\" b"), "a\uFFFD b\n"); // which is no UTF-8
    EXPECT_NE(session.Type("Nope\r").find("\nNope: 0:1:2 Unknown command: Nope\r\n"), std::string::npos);
    EXPECT_NE(session.Type("While 1=1 DO Echo %C{[Detection]Filter}; Wait 86400\r", "Green 530\r\n"), "");
    EXPECT_NE(session.Type("\x03").find(":1:4 Aborted\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Echo no", "Echo no"), "");
    EXPECT_EQ(session.Type("\x03").find("no\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Echo no\\\r", continuation), "");
    EXPECT_NE(session.Type("\x03"), "");
    EXPECT_NE(session.Type("Echo a\\\r", continuation), "");
    EXPECT_NE(session.Type("b\r").find("\nab\r\n"), std::string::npos);
    EXPECT_NE(session.Type("\x04", "\n"), "");
    EXPECT_EQ(session.Wait(), 0);
}

TEST(TerminalTest, OutputThatLeadsElsewhereIsARecord)
{
    const TemporaryFolder folder;
    const std::string output = folder.Path("output");
    AtPrompt session(folder.GetPath(), {.output = output.c_str()});
    EXPECT_NE(session.Type("Echo h\u00E9\u20ACllo\r").find("Echo h\u00E9\u20ACllo\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Nope\r").find("\nNope: 0:1:2 Unknown command: Nope\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Calc 1+\\\r", continuation), "");
    EXPECT_EQ(session.Type("2\r").find("\n3\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Echo no", "Echo no"), "");
    EXPECT_NE(session.Type("\x03"), "");
    EXPECT_NE(session.Type("\x04", "\n"), "");
    EXPECT_EQ(session.Wait(), 0);
    EXPECT_EQ(folder.Read("output"), "Echo h\u00E9\u20ACllo\nh\u00E9\u20ACllo\nNope\nCalc 1+\\\n2\n3\n");
}

TEST(TerminalTest, AnInterruptThatIsIgnoredLeavesTheLine)
{
    const TemporaryFolder folder;
    const std::string output = folder.Path("output");
    const auto former = std::signal(SIGINT, SIG_IGN); // as the shell inherits it
    AtPrompt session(folder.GetPath(), {.output = output.c_str()});
    std::signal(SIGINT, former);
    EXPECT_NE(session.Type("Echo no\x03 more\r"), "");
    EXPECT_NE(session.Type("\x04", "\n"), "");
    EXPECT_EQ(session.Wait(), 0);
    EXPECT_EQ(folder.Read("output"), "Echo no more\nno more\n");
}

TEST(TerminalTest, TeachesOncePerLine)
{
    const struct
    {
        const char* line;
        const char* shown; // below the line as typed
    } cases[] = {
        {"Calc Roud(3)",
            "Error:\n  Unknown function: roud\n  Roud(3)\n  ^\nCalc: 1043:505:201 (did you mean Round?)\n"},
        {"Calc -q 1/0", "Calc: 1043:505:133 Divide by zero\n  Calc -q 1/0\n            ^\n"},
        {"Calc \"\u65E5\u672C\"+/",
            "Error:\n  Expecting operand\n  \"\u65E5\u672C\"+/\n       ^\nCalc: 1043:505:20\n"
            "  Calc \"\u65E5\u672C\"+/\n              ^\n"},
        {"If 1=1 Then Set x=x/0; Echo x",
            "warning: If went on after \"Set x=x/0\": 1045:505:133 Divide by zero\n"
            "  If 1=1 Then Set x=x/0; Echo x\n                      ^\nx\n"},
        {"If 1=2 Then Set x=1/0 Else Set x=1/0",
            "warning: If went on after \"Set x=1/0\": 1045:505:133 Divide by zero\n"},
        {"AssertFail 2:* If 1=1 Then Set x=1/0",
            "warning: If went on after \"Set x=1/0\": 1045:505:133 Divide by zero\n"
            "  AssertFail 2:* If 1=1 Then Set x=1/0\n                                     ^\n"
            "AssertFail: 2001:0:6 The command succeeded\n"},
        {"Watch 1+/", "Watch: 2015:505:20 Expecting operand\n  Watch 1+/\n          ^\n"},
        {"AssertFail 2:* Set y=i/0",
            "AssertFail: 2001:0:6 The command failed with 1045:505:133 Divide by zero\n"
            "  AssertFail 2:* Set y=i/0\n                         ^\n"},
        {"While i/0=1 Do Echo i/0", "Divide by zero\ni/0=1\n  ^\nWhile: 1064:505:133\n"},
        {"While 1=1 Do Calc 1/0", "Error:\n  Divide by zero\n  1/0\n    ^\nWhile: 1043:505:133 Failed: Calc 1/0\n"},
        {"If 1=1 Then Assert 1=2", "Assertion \"1=2\" failed!\nwarning: If went on after \"Assert 1=2\": 9015:0:13\n"},
        {"While i<3 Do If 0 Then Set x=i",
            "note: a number counts as true when it is 0, and as false otherwise; compare it, as in 0<>0\n"},
        {"Echo a # b",
            "a # b\nnote: \"# b\" was read as part of the command; a comment stands on a line of its own, behind #\n"},
    };
    const TemporaryFolder folder;
    AtPrompt session(folder.GetPath());
    session.Type("Set i=1\r");
    for (const auto& [line, shown] : cases) {
        EXPECT_EQ(session.Run(line), shown) << line;
    }
}

TEST(TerminalTest, TakesExpressionsForCommands)
{
    const std::pair<const char*, const char*> cases[] = {
        {"1+2", "3\n"},
        {"ans*2", "6\n"},
        {"Calc ans-1", "5\n"},
        {"ans", "5\n"},
        {"x=ans+2", ""},
        {"x", "7\n"},
        {"x = x + 1", ""},
        {"x * 2", "16\n"},
        {"1=1", "TRUE\n"},
        {"-x+1", "-7\n"},
        {"(x)", "8\n"},
        {"\"a\" & x", "a8\n"},
        {"%E{x}+1", "9\n"},
        {"If(x=8,1,2)", "1\n"},
        {"x/0", "Error:\n  Divide by zero\n  x/0\n    ^\nCalc: 1043:505:133\n"},
        {"Cacl 1", "Cacl: 0:1:2 Unknown command: Cacl (did you mean Calc?)\n"},
        {"y", "y: 0:1:2 Unknown command: y\n"},
        {"x / 0", "Error:\n  Divide by zero\n  x / 0\n      ^\nCalc: 1043:505:133\n"},
        {"y <= 1", "Error:\n  Missing variable: y\n  y <= 1\n  ^\nCalc: 1043:505:48\n"},
        {"sqrt (9)",
            "Error:\n  Operator Expected\n  sqrt (9)\n       ^\nCalc: 1043:505:18\n"
            "note: sqrt is a function; what it is given stands in parentheses: sqrt(...)\n"},
        {"Log -x", "Log: 2007:0:2 Unknown option: -x\n"},
        {"?Max", "Max(n1, n2, ...) - The largest number.\n    Calc Max(102, 55, \"0xFF\", 33)\n    # 255\n"},
        {"# x", ""},
        {"pi", "3.14159265358979\n"},
        {"True and x=8", "TRUE\n"},
        {"x x", "x: 0:1:2 Unknown command: x\n"},
        {"Round", "Round: 0:1:2 Unknown command: Round\n"},
        {"Log -e EELog", ""},
        {"x * x", "64\n"},
    };
    const TemporaryFolder folder;
    AtPrompt session(folder.GetPath());
    for (const auto& [line, shown] : cases)
        EXPECT_EQ(session.Run(line), shown) << line;
    const std::string log = folder.Read("EELog.txt");
    EXPECT_EQ(log.find("Expression: x * x"), log.rfind("Expression: ")); // evaluated once
    EXPECT_NE(session.Type("quit 3\r", "\n"), "");
    EXPECT_EQ(WEXITSTATUS(session.Wait()), 3);
}

TEST(TerminalTest, CompletesAtTab)
{
    const TemporaryFolder folder;
    AtPrompt session(folder.GetPath());
    EXPECT_NE(session.Type("If %S{TempO\t", "ptics"), "");
    EXPECT_NE(session.Type("\t").find("TempOptics        = "), std::string::npos); // there is nothing to add
    EXPECT_NE(session.Type("T\t=37 Then \\\r", continuation), "");
    EXPECT_NE(session.Type("Calc Ro\t", "> Calc Round(").find("\r\nRound(number, decimals)  The number as"),
        std::string::npos);
    EXPECT_NE(session.Type("2.5,2) El\t", "LSE "), "");
    EXPECT_NE(session.Type("\x03"), "");
    EXPECT_NE(session.Type("Help oper\t", "ators"), "");
}

TEST(TerminalTest, FitsIntoTheWindow)
{
    const TemporaryFolder folder;
    AtPrompt session(folder.GetPath(), {.environment = {{"NO_COLOR", ""}}});
    session.Resize(0, 30); // of a height that is not known
    EXPECT_EQ(session.Run("Calc -q 1111111111111111111111111111+1/0+22222222222"),
        "\x1b[31mCalc: 1043:505:133 Divide by zero\x1b[0m\n"
        "  \u2026111111111111111+1/0+22222\u2026\n"
        "\x1b[31m                     ^\x1b[0m\n");
    EXPECT_NE(session.Type("Echo a", "Echo a"), "");
    session.SetWindow(9, 30); // which draws the line anew, without a key
    EXPECT_NE(session.Type("", "Echo a"), "");
    EXPECT_EQ(session.Run(""), "a\n");
    const std::string help = session.Run("Help");
    EXPECT_EQ(help.find("paged: Commands:\n"), 0u) << help;
    EXPECT_EQ(session.Run("?Max").find("Max(n1"), 0u);                    // which has room
    EXPECT_EQ(session.Run("While i<9 Do Echo %E{i}").find("1\n2\n"), 0u); // which may take its time
}

TEST(TerminalTest, AFormerInterruptLeavesThePager)
{
    const TemporaryFolder folder;
    AtPrompt session(folder.GetPath(), {.environment = {{"PAGER", "cat; sleep 1.3; echo over"}}});
    session.Resize(9, 80);
    session.Type("\x03");
    EXPECT_TRUE(session.Run("Help").ends_with("\nover\n"));
}

TEST(TerminalTest, ShellsShareTheHistoryHoweverTheyEnd)
{
    const std::string up = "\x1b[A";
    const std::string down = "\x1b[B";
    const std::string left = "\x1b[D";
    const TemporaryFolder folder;
    AtPrompt other(folder.GetPath());
    other.Run("Echo h\u00E9llo 100%s");
    for (const int signal : {SIGKILL, SIGHUP, SIGTERM}) {
        AtPrompt session(folder.GetPath());
        session.Run("Echo by " + std::to_string(signal));
        session.Type("While 1=1 Do Echo x; Wait 86400\r", "x\r\n");
        session.Send(signal);
        session.Wait();
    }
    other.Run("Calc 1\\\r+1");
    EXPECT_EQ(folder.Read("History.txt"),
        "Echo h\u00E9llo 100%s\n"
        "Echo by 9\nWhile 1=1 Do Echo x; Wait 86400\nEcho by 1\nWhile 1=1 Do Echo x; Wait 86400\n"
        "Echo by 15\nWhile 1=1 Do Echo x; Wait 86400\nCalc 1+1\n");
    EXPECT_EQ(other.Run("Echo by" + up + up), "by 1\n");
    EXPECT_EQ(other.Run("Echo h" + up), "h\u00E9llo 100%s\n");
    EXPECT_TRUE(other.Run("\x12llo 100\r").ends_with("\nh\u00E9llo 100%s\n"));
    AtPrompt session(folder.GetPath());
    EXPECT_EQ(session.Run("Calc" + up), "2\n");
    EXPECT_EQ(session.Run("Calc 7+3" + left + left + left + up + down + "1"), "20\n"); // back to what was left
    EXPECT_EQ(session.Run("Calc 17" + up + left + "4" + down), "60\n");                // which is a line of its own
}

TEST(TerminalTest, HistoryThatIsCutShortHasWholeLines)
{
    const TemporaryFolder folder;
    const std::string longLine = "x=\"" + std::string(0x50000, 'y');
    folder.Write("History.txt", longLine + longLine + "\nEcho a\n");
    AtPrompt session(folder.GetPath());
    folder.Write("History.txt", longLine + "\nEcho b\n");
    session.Run("Echo c");
    EXPECT_EQ(session.Run("Echo" + std::string("\x1b[A\x1b[A")), "b\n");
    EXPECT_EQ(session.Run("y\x1b[A"), "y: 0:1:2 Unknown command: y\n");
}

TEST(TerminalTest, DelayedValuesAreSavedWhileItWaits)
{
    const TemporaryFolder folder;
    AtPrompt session(folder.GetPath());
    session.Run("Status -d0.1 LampHours=7.25");
    EXPECT_TRUE(
        WaitUntil([&] { return folder.Read("Status.ini").find("LampHours=double:7.25") != std::string::npos; }));
    session.Run("Status -d0.5 LampHours=8");
    std::filesystem::remove(folder.Path("Status.ini"));
    std::filesystem::create_directory(folder.Path("Status.ini"));
    EXPECT_NE(session.Type("", "a delayed value is lost"), "");
}

TEST(TerminalTest, SignalsEndTheShellInOrder)
{
    for (const int signal : {SIGTERM, SIGHUP}) {
        const TemporaryFolder folder;
        AtPrompt session(folder.GetPath());
        session.Type("Status -n -d86400 TerminalTest=7\r");
        EXPECT_FALSE(session.IsCooked());
        session.Send(signal);
        EXPECT_EQ(session.Wait(), signal);
        EXPECT_TRUE(session.IsCooked());
        EXPECT_NE(folder.Read("Status.ini").find("TerminalTest=int:7"), std::string::npos);
    }
}
