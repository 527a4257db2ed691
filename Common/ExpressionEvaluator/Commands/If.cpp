#include "If.h"

namespace {
constexpr UsageLine usage_lc[] = {
    {L"Usage: If <condition> Then <command1> [Else <command2>]"},
    {L" Conditional statement, executes a command if the condition"},
    {L" is true and optionally another statement if the condition is false."},
    {L"Arguments:"},
    {L" <condition>    The condition that is to be evaluated."},
    {L"                 The operators and functions that can be used"},
    {L"                 are listed below."},
    {L" <command1>     Command(s) with arguments that is to be run if the"},
    {L"                 condition is true."},
    {L" <command2>     Optional: Command(s) with arguments that is to be run if"},
    {L"                 the condition is false."},
    {L"Options: (Must be specified before the condition)"},
    {L"  -l<char> Separator to use between commands when multiple commands are used."},
    {L"           Default: ;"},
    {L"  -v     Verbose mode, display the outcome of the condition and any errors."},
    {L"  -r<id> Standard record header option. This option can be inherited by the"},
    {L"         conditionally started command through the %%E{%s} or", L"RecordHeader"},
    {L"          %%E{RH_IF} variable."},
    {L""},
};

} // namespace

struct If::Statement
{
    WString condition;
    WString thenList;
    WString elseList; // may be empty
};

CommandBase* CreateCommandIf()
{
    return new If;
}

WString If::GetName()
{
    return L"If";
}

unsigned int If::GetCommandId()
{
    return 1042;
}

ExitCode If::Main(ArgumentList& arguments, Options& options)
{
    if (arguments.Count() == 0)
        return ExitCode(1);
    WString separator = L";";
    options.TryGetString(L"L", 8, separator, 1, 1);
    const bool verbose = options.TryGetFlag(L"v", 6);
    InheritRecordHeader(options, L"RH_IF");

    Statement statement;
    ExitCode failure = SplitStatement(arguments.At(0), statement);
    if (failure.IsError() || !TryStart(options, failure))
        return failure;

    bool holds = false;
    failure = EvaluateCondition(statement.condition, verbose, holds);
    if (failure.IsError())
        return failure;
    const WString& chosen = holds ? statement.thenList : statement.elseList;
    if (verbose && chosen.IsEmpty())
        GetPipe().WriteLine(L"Condition is false - Nothing to run");
    else if (verbose)
        GetPipe().WriteLine(L"Condition is %s - Run: %s", holds ? L"true" : L"false", chosen);
    if (!chosen.IsEmpty())
        RunCommandList(chosen, separator);
    return ExitCode(0);
}

/// `condition THEN list`, or `condition THEN list ELSE list`.
ExitCode If::SplitStatement(const WString& text, Statement& statement)
{
    WString lists;
    if (!text.TrySplitAtKeyword(L"THEN", statement.condition, lists))
        return Refuse(3, L"THEN is missing");
    const bool hasElse = lists.TrySplitAtKeyword(L"ELSE", statement.thenList, statement.elseList);
    if (!hasElse)
        statement.thenList = lists;
    if (statement.thenList.IsEmpty())
        return Refuse(4, L"No command after THEN");
    if (hasElse && statement.elseList.IsEmpty())
        return Refuse(5, L"No command after ELSE");
    return ExitCode(0);
}

void If::RunCommandList(const WString& list, const WString& separator)
{
    for (const WString& command : SplitCommandList(list, separator, 9))
        Run(command, GetPipe(), CommandFlags::inheritedOutput);
}

void If::ShowUsage()
{
    WriteUsage(usage_lc, L"Supported operators in the condition:", L"Supported functions in the condition:");
}
