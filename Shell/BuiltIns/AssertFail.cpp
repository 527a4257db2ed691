#include "BuiltIns/BuiltIn.h"
#include "Commands/CommandLine.h"

namespace {
constexpr const wchar_t* usage_lc[] = {
    L"Usage: AssertFail <exit code> <command>",
    L" Runs the command and succeeds when it fails with the exit code.",
    L" The rest of the line is the command, as it stands.",
    L"Arguments:",
    L" <exit code>  The expected code; may contain wildcards (*/?).",
    L"Example: AssertFail 1043:505:133 Calc -q 1/0",
};
constexpr BuiltInRecord record_lc = {L"AssertFail", 2001, usage_lc,
    CommandFlags::noSubstitution | CommandFlags::singleArgument | CommandFlags::optionsFirst};

class AssertFail : public BuiltIn
{
public:
    AssertFail() : BuiltIn(record_lc) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode AssertFail::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options, 1, 1);
    WString expected;
    WString command;
    CommandLine::SplitName(arguments.At(0), expected, command);
    if (command.IsEmpty())
        Fail(badCount, L"There is no command behind the exit code");

    const unsigned int runFlags =
        CommandFlags::inheritedOutput | CommandFlags::toleratesFailure | CommandFlags::noFailureLog;
    const ExitCode code = CommandBase::Run(command, GetPipe(), runFlags);
    if (!code.IsError())
        Fail(failed, L"The command succeeded");
    if (!code.ToString().IsWildcardMatch(expected.ToCString(), true))
        Fail(failed, L"The command failed with " + code.ToString());
    return ExitCode(0);
}
} // namespace

CommandBase* CreateAssertFail()
{
    return new AssertFail();
}
