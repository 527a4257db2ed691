#include "Commands/CommandRunner.h"
#include "Commands/EmbeddedResource.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <functional>
#include <gtest/gtest.h>

namespace {
/// A command whose work is given by the test.
class Probe : public CommandBase
{
public:
    using Work = std::function<ExitCode(Probe&, ArgumentList&, Options&)>;

    Probe() { flags = CommandFlags::singleArgument; }
    WString GetName() override { return L"Probe"; }
    unsigned int GetCommandId() override { return 4711; }
    const char* GetSourceCodeTimestamp() override { return ""; }
    ExitCode Main(ArgumentList& arguments, Options& options) override
    {
        calls += "main ";
        return work(*this, arguments, options);
    }
    void ShowUsage() override { GetPipe().DoWriteLine(L"Usage: Probe 100%s"); }
    void OnStart(ArgumentList&, Options&) override { calls += "start "; }
    void HandleStandardOptions(Options&) override { calls += "options "; }
    void OnExit(ExitCode& code) override { calls += "exit " + code.ToString().ToUtf8(); }
    /// Fails with code 2 and this message.
    static Work FailWith(const wchar_t* message)
    {
        return [message](Probe& probe, auto&...) { return probe.SetFailureMessage(message), ExitCode(2); };
    }

    static std::string calls;
    static Work work;
};
std::string Probe::calls;
Probe::Work Probe::work;

class CommandRunnerTest : public testing::Test
{
protected:
    CommandRunnerTest()
    {
        CommandRegistry::Add([]() -> CommandBase* { return new Probe(); }, "no such file");
        Probe::calls.clear();
    }
    ~CommandRunnerTest() override { Abort::Clear(); }

    /// The outcome as "command: code message".
    std::string Run(const WString& line)
    {
        const CommandRunner::Outcome outcome = CommandRunner::Run(line, pipe, environment, 0x800);
        return (outcome.command + L": " + outcome.code.ToString() + L" " + outcome.message).ToUtf8();
    }
    std::string RunProbe(Probe::Work work)
    {
        Probe::work = std::move(work);
        return Run(L"probe");
    }

    ArrayPipe pipe;
    Environment environment;
};
} // namespace

TEST_F(CommandRunnerTest, CommandGetsLinePipeEnvironmentAndFlags)
{
    environment.SetString(L"x", L"a  b");
    Probe::work = [](Probe& probe, ArgumentList& arguments, Options& options) {
        EXPECT_TRUE(options.TryGetFlag(L"q", 3));
        probe.GetPipe().DoWriteLine(arguments.At(0));
        probe.GetEnvironment().SetString(L"y", L"set");
        EXPECT_EQ(probe.GetFlags(), 0x800u | CommandFlags::singleArgument);
        probe.GetReturnString() = L"returned";
        return ExitCode(0);
    };
    const auto outcome = CommandRunner::Run(L" PROBE -q %E{x} \"c\"", pipe, environment, 0x800);
    EXPECT_EQ(outcome.code, ExitCode(0));
    EXPECT_EQ(outcome.returnString, L"returned");
    EXPECT_EQ(Join(pipe.lines), "a  b \"c\"");
    EXPECT_TRUE(environment.ContainsKey(L"Y"));
    EXPECT_EQ(Probe::calls, "start options main exit 0:0:0");
}

TEST_F(CommandRunnerTest, FailuresAreStampedAndDescribed)
{
    const std::pair<Probe::Work, const char*> cases[] = {{[](auto&...) { return ExitCode(13); }, "4711:0:13 "},
        {[](auto&...) { return ExitCode(1, 505, 133); }, "1:505:133 "},
        {[](auto&...) { return ExitCode(0, 505, 133); }, "4711:505:133 "},
        {[](auto&...) { return ExitCode(1); }, "4711:0:1 Wrong number of arguments"},
        {[](auto&...) -> ExitCode { throw ExitCode(8); }, "4711:0:8 "},
        {[](auto&...) -> ExitCode { throw HostException(HostError::FileError, L"%s"); }, "4711:1:10 File error: %s"},
        {[](auto&...) -> ExitCode { throw std::runtime_error("%n"); }, "4711:1:1 Unexpected exception: %n"},
        {[](auto&...) -> ExitCode { throw 1; }, "4711:1:1 Unexpected exception"},
        {Probe::FailWith(L"100%s"), "4711:0:2 100%s"}};
    for (const auto& [work, outcome] : cases)
        EXPECT_EQ(RunProbe(work), std::string("Probe: ") + outcome);
    EXPECT_EQ(Probe::calls.substr(0, 28), "start options main exit 4711");
    Probe::work = [](auto&...) { return ExitCode(2); };
    EXPECT_EQ(Run(L"Probe -x1 a"), "Probe: 4711:0:2 Unknown option: -x1");
}

TEST_F(CommandRunnerTest, LinesThatReachNoCommand)
{
    EXPECT_EQ(Run(L""), ": 0:0:0 ");
    EXPECT_EQ(Run(L" \t"), ": 0:0:0 ");
    EXPECT_EQ(Run(L"%s%n x"), "%s%n: 0:1:2 Unknown command: %s%n");
    EXPECT_EQ(Run(L"Probe %E{none}"), "Probe: 4711:1:5 Unknown reference: %E{none}");
    EXPECT_EQ(Run(L"Probe -x\""), "Probe: 4711:1:6 Missing closing quote");
    EXPECT_EQ(Run(L"Probe " + WString(CommandRunner::maxLineLength, L'x')), "Probe: 0:1:7 Command is too long");
    const std::string name = std::string(60, '(') + "...";
    EXPECT_EQ(Run(WString(100000, L'(')), name + ": 0:1:2 Unknown command: " + name);
    EXPECT_EQ(Probe::calls, "exit 4711:1:5exit 4711:1:6");
}

TEST_F(CommandRunnerTest, NestingIsLimited)
{
    int level = 0;
    int levels = 0;
    Probe::work = [&](Probe& probe, auto&...) {
        ++levels;
        if (++level == CommandRunner::maxNesting + 1)
            return ExitCode(0);
        probe.Run(L"Probe", probe.GetPipe(), 0); // its failure is passed over, the nesting is not
        return ExitCode(0);
    };
    EXPECT_EQ(Run(L"Probe"), "Probe: 4711:1:3 Commands are nested too deeply");
    EXPECT_EQ(levels, CommandRunner::maxNesting);
    level = 1;
    EXPECT_EQ(Run(L"Probe"), "Probe: 0:0:0 ");
}

TEST_F(CommandRunnerTest, AbortEndsAllRunningCommands)
{
    // A loop that passes over every failure, as While does with -er*.
    int runs = 0;
    const Probe::Work loop = [&](Probe& probe, auto&...) {
        for (; runs < 100; ++runs) {
            if (runs == 3)
                Abort::Request();
            probe.Run(L"Nothing", probe.GetPipe(), 0);
        }
        return ExitCode(0);
    };
    EXPECT_EQ(RunProbe(loop), "Probe: 4711:1:4 Aborted");
    EXPECT_EQ(runs, 3);
    EXPECT_EQ(Run(L"Probe"), "Probe: 0:1:4 Aborted");
    Abort::Clear();
    EXPECT_EQ(RunProbe([](auto&...) { return ExitCode(0); }), "Probe: 0:0:0 ");
}

TEST_F(CommandRunnerTest, ResourcesComeFromElfFilesOnly)
{
    EXPECT_EQ(GetThrown([] { EmbeddedResource(L"Nothing", L"HELP.TXT"); }), "0:1:10 File error: no command Nothing");
    EXPECT_EQ(GetThrown([] { EmbeddedResource(L"Probe", L"HELP.TXT"); }),
        "0:1:10 File error: no such file: no section .ov.HELP.TXT");
    const TemporaryFolder folder;
    for (const char* bytes : {"", "text", "\177ELF", "\177ELF\2\1\1"})
        EXPECT_TRUE(EmbeddedResource(folder.Write("file", bytes), L"version").EndOfFile()) << bytes;
    // A file that ends before its table of sections.
    const std::string cut = TemporaryFolder::ReadFile(PLUGIN_FILE).substr(0, 5000);
    EXPECT_TRUE(EmbeddedResource(folder.Write("file", cut), L"version").EndOfFile());
    EXPECT_FALSE(EmbeddedResource(PLUGIN_FILE, L"version").EndOfFile());
    EXPECT_TRUE(EmbeddedResource(PLUGIN_FILE, L"").EndOfFile());
}
