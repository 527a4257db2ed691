#include "CommandTest.h"

#include "AssertCommand.h"
#include "Calc.h"
#include "Commands/CommandRegistry.h"
#include "ExpressionEvaluator.h"
#include "If.h"
#include "Instrument/System.h"
#include "SetCommand.h"
#include "Support/HostTexts.h"
#include "Support/TestFiles.h"
#include "Text/Abort.h"
#include "While.h"

namespace {
using Action = ExitCode (*)(CommandBase& command, ArgumentList& arguments);

class FakeCommand : public CommandBase
{
public:
    FakeCommand(const wchar_t* name, Action action) : name(name), action(action) {}
    WString GetName() override { return name; }
    unsigned int GetCommandId() override { return 7001; }
    const char* GetSourceCodeTimestamp() override { return ""; }
    void ShowUsage() override {}
    ExitCode Main(ArgumentList& arguments, Options&) override { return action(*this, arguments); }

private:
    const wchar_t* const name;
    const Action action;
};

ExitCode Say(CommandBase& command, ArgumentList& arguments)
{
    WString line;
    for (unsigned int index = 0; index < arguments.Count(); ++index)
        line.AppendWithSeparator(arguments.At(index), L" ");
    command.GetPipe().DoWriteLine(line);
    return ExitCode(0);
}

ExitCode Fail(CommandBase&, ArgumentList& arguments)
{
    ExitCode code;
    EXPECT_TRUE(arguments.Count() == 1 && ExitCode::TryParse(arguments.At(0), code));
    return code;
}

ExitCode WriteFlags(CommandBase& command, ArgumentList&)
{
    command.GetPipe().WriteLine(L"0x%x", command.GetFlags());
    return ExitCode(0);
}

ExitCode WriteLog(CommandBase& command, ArgumentList&)
{
    const std::string path = System::errorLog.GetPath();
    for (const std::string& line : ReadTestLines(path))
        command.GetPipe().DoWriteLine(WString::FromUtf8(line));
    std::filesystem::resize_file(path, 0);
    return ExitCode(0);
}

/// The lines without the names of the functions, which follow their title.
WStringArray WithoutFunctions(const WStringArray& lines, const wchar_t* title)
{
    WStringArray others;
    bool isFunctions = false;
    for (const WString& line : lines) {
        isFunctions = isFunctions && !line.StartsWith(L"Run: ", false);
        if (!isFunctions)
            others.Add(line);
        isFunctions = isFunctions || line == title;
    }
    return others;
}

ExitCode WriteUsage(CommandBase& command, ArgumentList& arguments)
{
    ArrayPipe general;
    ExpressionEvaluator::DisplaySupportedOperatorsAndFunctionsHelpText(general, true, L"Titles %s", L"%%");
    ArrayPipe usage;
    if (arguments.Count() == 1)
        CommandRunner::ShowUsage(*CommandRegistry::FindOrNull(arguments.At(0)), usage);
    for (const WString& line : arguments.Count() == 1 ? usage.lines : WithoutFunctions(general.lines, L"%"))
        if (arguments.Count() == 0 || std::ranges::find(general.lines, line) == general.lines.end())
            command.GetPipe().DoWriteLine(line);
    return ExitCode(0);
}

constexpr CommandFactory factories_lc[] = {
    CreateCommandAssertCommand,
    CreateCommandCalc,
    CreateCommandIf,
    CreateCommandSetCommand,
    CreateCommandWhile,
    []() -> CommandBase* { return new FakeCommand(L"Say", Say); },
    []() -> CommandBase* { return new FakeCommand(L"Fail", Fail); },
    []() -> CommandBase* { return new FakeCommand(L"Flags", WriteFlags); },
    []() -> CommandBase* { return new FakeCommand(L"Log", WriteLog); },
    []() -> CommandBase* { return new FakeCommand(L"Usage", WriteUsage); },
};

void StartSystem()
{
    static const TemporaryFolder folder; // until the end of the process, which may write to it as long
    for (const char* file : {"Config.ini", "Status.ini", "ErrorLog.txt"})
        folder.Write(file, "");
    System::Start(folder.GetPath(), folder.GetPath());
    System::status.TryAdd(L"VersionProductName", ST_String, L"OrvaneX9");
}
} // namespace

CommandTest::CommandTest()
{
    for (const CommandFactory factory : factories_lc)
        CommandRegistry::Add(factory, PLUGIN_FILE);
    Abort::Clear();
    StartSystem();
}

CommandTest::~CommandTest()
{
    Abort::Clear();
}

std::string CommandTest::Run(const std::string& line, unsigned int runFlags)
{
    ArrayPipe pipe;
    const auto outcome = CommandRunner::Run(WString::FromUtf8(line), pipe, environment, runFlags);
    if (outcome.code.IsError()) {
        WString exit = L"exit " + outcome.code.ToString();
        if (!outcome.message.IsEmpty())
            exit += L" " + outcome.message;
        pipe.lines.Add(exit);
    }
    const std::string output = Join(pipe.lines);
    return output.empty() && !pipe.lines.IsEmpty() ? "\n" : output; // an empty line is not nothing
}
