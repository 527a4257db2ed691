#include "BuiltIns/BuiltIn.h"
#include "Commands/CommandLine.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: AssertFail <exit code> <command>",
    L" Runs the command and succeeds when it fails with the exit code.",
    L" The rest of the line is the command, as it stands.",
    L"Arguments:",
    L" <exit code>  The expected code; may contain wildcards (*/?).",
    L"Example: AssertFail 1043:505:133 Calc -q 1/0",
};

class AssertFail : public BuiltIn
{
public:
    AssertFail() : BuiltIn(assertFail_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode AssertFail::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options);
    WString expected;
    WString command;
    CommandLine::SplitName(arguments.At(0), expected, command);
    if (command.IsEmpty())
        Fail(CommonExit::wrongCount, L"There is no command behind the exit code");

    const unsigned int runFlags =
        CommandFlags::inheritedOutput | CommandFlags::toleratesFailure | CommandFlags::noFailureLog;
    const ExitCode code = CommandBase::Run(command, GetPipe(), runFlags);
    if (!code.IsError())
        Fail(failed, L"The command succeeded");
    if (code.ToString().IsWildcardMatch(expected.ToCString(), true))
        return ExitCode(0);
    for (const WString& note : GetRunNotes())
        AddNote(note);
    Fail(failed,
        L"The command failed with " + code.ToString() + (GetRunMessage().IsEmpty() ? L"" : L" ") + GetRunMessage());
}
constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::ExitCodePattern}, {ArgumentKind::Command, L" "}};
} // namespace

constexpr CommandRecord assertFail_gb = {
    L"AssertFail", 2001, Create<AssertFail>, usage_lc, {}, CommandFlags::restAsItStands, arguments_lc, {1, 1}};
