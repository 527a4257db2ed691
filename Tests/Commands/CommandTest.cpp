#include "CommandTest.h"

#include "AssertCommand.h"
#include "Calc.h"
#include "Commands/CommandRegistry.h"
#include "If.h"
#include "Services/Abort.h"
#include "Services/System.h"
#include "SetCommand.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"
#include "While.h"

namespace {
class Say : public CommandBase
{
public:
    WString GetName() override { return L"Say"; }
    unsigned int GetCommandId() override { return 7001; }
    const char* GetSourceCodeTimestamp() override { return ""; }
    void ShowUsage() override {}
    ExitCode Main(ArgumentList& arguments, Options&) override
    {
        WString line;
        for (unsigned int index = 0; index < arguments.Count(); ++index)
            line.AppendWithSeparator(arguments.At(index), L" ");
        GetPipe().DoWriteLine(line);
        return ExitCode(0);
    }
};

class Fail : public Say
{
public:
    WString GetName() override { return L"Fail"; }
    unsigned int GetCommandId() override { return 7002; }
    ExitCode Main(ArgumentList& arguments, Options&) override
    {
        ExitCode code;
        EXPECT_TRUE(arguments.Count() == 1 && ExitCode::TryParse(arguments.At(0), code));
        return code;
    }
};

class Flags : public Say
{
public:
    WString GetName() override { return L"Flags"; }
    unsigned int GetCommandId() override { return 7003; }
    ExitCode Main(ArgumentList&, Options&) override
    {
        GetPipe().WriteLine(L"0x%x", GetFlags());
        return ExitCode(0);
    }
};

template <typename Command>
CommandBase* Create()
{
    return new Command;
}

std::string ToText(const CommandRunner::Outcome& outcome, WStringArray lines)
{
    if (outcome.code.IsError())
        lines.Add(L"exit " + outcome.code.ToString());
    return Join(lines);
}

const TemporaryFolder& GetDataFolder()
{
    static const TemporaryFolder folder; // until the end of the process, which may write to it as long
    return folder;
}
} // namespace

void RecordingClock::Sleep(unsigned int milliseconds)
{
    waits.push_back(milliseconds);
    ManualClock::Sleep(milliseconds);
    if (onSleep)
        onSleep();
}

CommandTest::CommandTest()
{
    for (const CommandFactory factory : {CreateCommandAssertCommand, CreateCommandCalc, CreateCommandIf,
             CreateCommandSetCommand, CreateCommandWhile, Create<Say>, Create<Fail>, Create<Flags>})
        CommandRegistry::Add(factory, PLUGIN_FILE);
    Abort::Clear();
}

CommandTest::~CommandTest()
{
    Abort::Clear();
}

std::string CommandTest::Run(const char* line, unsigned int runFlags)
{
    ArrayPipe pipe;
    const auto outcome = CommandRunner::Run(WString::FromUtf8(line), pipe, environment, runFlags);
    return ToText(outcome, pipe.lines);
}

void CommandTest::RunSession(std::initializer_list<Step> steps)
{
    for (const Step& step : steps)
        EXPECT_EQ(Run(step.line), step.expected) << step.line;
}

std::string CommandTest::GetVariable(const char* name) const
{
    WString value = L"(none)";
    environment.TryGetString(WString::FromUtf8(name), value);
    return value.ToUtf8();
}

std::string CommandTest::GetFailureMessage(const char* line)
{
    ArrayPipe pipe;
    return CommandRunner::Run(WString::FromUtf8(line), pipe, environment, 0).message.ToUtf8();
}

void CommandTest::StartSystem()
{
    const TemporaryFolder& folder = GetDataFolder();
    folder.Write("Config.ini", "");
    folder.Write("Status.ini", "");
    folder.Write("ErrorLog.txt", "");
    System::Start(folder.GetPath(), folder.GetPath());
}

std::string CommandTest::ReadErrorLog()
{
    return TemporaryFolder::ReadFile(System::errorLog.GetPath());
}
