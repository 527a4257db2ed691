#include "Support/Patience.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <poll.h>
#include <pty.h>
#include <termios.h>

namespace {
/// labsh at a terminal, whose other end is ours.
class Session
{
public:
    /// `output`, when given, is the file that standard output goes to.
    explicit Session(const std::string& dataFolder, const char* output = nullptr)
        : id(forkpty(&terminal, nullptr, nullptr, nullptr))
    {
        if (id == 0) {
            setenv("TERM", "xterm", 1);
            unsetenv("LC_ALL"); // UTF-8 is to be typed without a word about it
            if (output && !std::freopen(output, "w", stdout))
                _exit(127);
            execl(LABSH_FILE, LABSH_FILE, "--data", dataFolder.c_str(), nullptr);
            _exit(127);
        }
        ReadTo(prompt);
    }
    ~Session()
    {
        kill(id, SIGKILL);
        Wait();
        close(terminal);
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Types the keys and reads up to the mark; what the terminal showed up to there, "" when it closed before.
    std::string Type(const std::string& keys, const std::string& mark = prompt)
    {
        if (write(terminal, keys.data(), keys.size()) < 0)
            return "";
        return ReadTo(mark);
    }
    int Wait() const { return WaitForExit(id); }
    void Send(int signal) const { kill(id, signal); }
    /// Whether the terminal treats lines and echoes them, as a shell leaves it.
    bool IsCooked() const
    {
        termios settings = {};
        return tcgetattr(terminal, &settings) == 0 && (settings.c_lflag & ICANON) && (settings.c_lflag & ECHO);
    }

    static constexpr const char* prompt = "labsh> ";

private:
    int terminal = -1;
    pid_t id;

    std::string ReadTo(const std::string& mark)
    {
        constexpr int patience = 60000; // milliseconds, for a shell that has stopped answering
        std::string text;
        for (char byte = 0; !text.ends_with(mark); text += byte) {
            pollfd input = {terminal, POLLIN, 0};
            if (poll(&input, 1, patience) != 1 || read(terminal, &byte, 1) != 1)
                return "";
        }
        return text;
    }
};
} // namespace

TEST(TerminalTest, FailuresAndInterruptsEndTheCommandAlone)
{
    const TemporaryFolder folder;
    Session session(folder.GetPath());
    EXPECT_NE(session.Type("Echo h\u00E9\u20ACllo\r").find("\nh\u00E9\u20ACllo\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Nope\r").find("\nNope: 0:1:2 Unknown command: Nope\r\n"), std::string::npos);
    EXPECT_NE(session.Type("While 1=1 DO Echo %C{[Detection]Filter}; Wait 86400\r", "Green 530\r\n"), "");
    EXPECT_NE(session.Type("\x03").find(":1:4 Aborted\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Echo no", "Echo no"), "");
    EXPECT_EQ(session.Type("\x03").find("no\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Echo a\\\r"), "");
    EXPECT_NE(session.Type("b\r").find("\nab\r\n"), std::string::npos);
    EXPECT_NE(session.Type("\x04", "\n"), "");
    EXPECT_EQ(session.Wait(), 0);
}

TEST(TerminalTest, OutputThatLeadsElsewhereIsARecord)
{
    const TemporaryFolder folder;
    Session session(folder.GetPath(), folder.Path("output").c_str());
    EXPECT_NE(session.Type("Echo h\u00E9\u20ACllo\r").find("Echo h\u00E9\u20ACllo\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Nope\r").find("\nNope: 0:1:2 Unknown command: Nope\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Calc 1+\\\r"), "");
    EXPECT_EQ(session.Type("2\r").find("\n3\r\n"), std::string::npos);
    EXPECT_NE(session.Type("Echo no", "Echo no"), "");
    EXPECT_NE(session.Type("\x03"), "");
    EXPECT_NE(session.Type("\x04", "\n"), "");
    EXPECT_EQ(session.Wait(), 0);
    EXPECT_EQ(folder.Read("output"), "Echo h\u00E9\u20ACllo\nh\u00E9\u20ACllo\nNope\nCalc 1+\\\n2\n3\n");
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
        {"Calc -q 1/0", "Calc: 1043:505:133 Divide by zero\n"},
        {"While 1=1 Do Calc 1/0", "Error:\n  Divide by zero\n  1/0\n    ^\nWhile: 1043:505:133 Failed: Calc 1/0\n"},
        {"If 1=1 Then Assert 1=2", "Assertion \"1=2\" failed!\nwarning: If went on after \"Assert 1=2\": 9015:0:13\n"},
        {"While i<3 Do If 0 Then Set x=i",
            "note: a number counts as true when it is 0, and as false otherwise; compare it, as in 0<>0\n"},
        {"Echo a # b",
            "a # b\nnote: \"# b\" was read as part of the command; a comment stands on a line of its own, behind #\n"},
    };
    const TemporaryFolder folder;
    Session session(folder.GetPath());
    session.Type("Set i=1\r");
    for (const auto& [line, shown] : cases) {
        std::string text = session.Type(line + std::string("\r"));
        std::erase(text, '\r');
        text.erase(0, text.find('\n') + 1);
        EXPECT_EQ(text, shown + std::string(Session::prompt)) << line;
    }
}

TEST(TerminalTest, HistoryIsKept)
{
    constexpr const char* up = "\x1b[A";
    const TemporaryFolder folder;
    {
        Session session(folder.GetPath());
        session.Type("Echo 100%s\r");
        session.Type("Exit\r", "\n");
        EXPECT_EQ(session.Wait(), 0);
    }
    Session session(folder.GetPath());
    EXPECT_NE(session.Type(std::string(up) + up + "\r").find("\n100%s\r\n"), std::string::npos);
}

TEST(TerminalTest, SignalsEndTheShellInOrder)
{
    for (const int signal : {SIGTERM, SIGHUP}) {
        const TemporaryFolder folder;
        Session session(folder.GetPath());
        session.Type("Status -n -d86400 TerminalTest=7\r");
        EXPECT_FALSE(session.IsCooked());
        session.Send(signal);
        EXPECT_EQ(session.Wait(), signal);
        EXPECT_TRUE(session.IsCooked());
        EXPECT_NE(folder.Read("Status.ini").find("TerminalTest=int:7"), std::string::npos);
    }
}
