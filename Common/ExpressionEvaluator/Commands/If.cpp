#include "If.h"

#include "Hints.h"

namespace {
constexpr wchar_t headerName[] = L"RH_IF";

constexpr UsageLine usage_lc[] = {
    L"Usage: If <condition> Then <command1> [Else <command2>]",
    L" Conditional statement, executes a command if the condition",
    L" is true and optionally another statement if the condition is false.",
    L"Arguments:",
    L" <condition>    The condition that is to be evaluated.",
    L"                 The operators and functions that can be used",
    L"                 are listed below.",
    L" <command1>     Command(s) with arguments that is to be run if the",
    L"                 condition is true.",
    L" <command2>     Optional: Command(s) with arguments that is to be run if",
    L"                 the condition is false.",
    L"Options: (Must be specified before the condition)",
    L"  -l<char> Separator to use between commands when multiple commands are used.",
    L"           Default: ;",
    L"  -v     Verbose mode, display the outcome of the condition and any errors.",
    L"  -r<id> Standard record header option. This option can be inherited by the",
    {L"         conditionally started command through the %%E{%s} or", L"RecordHeader"},
    L"          %%E{RH_IF} variable.",
    L"",
};

constexpr TextOption separator_lc(L"l", 8, 1, 1, L"Separate commands by this character instead of ;");
constexpr FlagOption verbose_lc(L"v", 6, L"Show how the condition came out, and log its errors");
constexpr OptionRecord options_lc[] = {separator_lc, verbose_lc, recordHeaderOption};

constexpr ArgumentRecord arguments_lc[] = {
    {ArgumentKind::Expression}, {ArgumentKind::CommandList, L"THEN"}, {ArgumentKind::CommandList, L"ELSE", true}};
constexpr const wchar_t* variables_lc[] = {L"RecordHeader", headerName};

constexpr CommandRecord record_lc = {L"If", 1042, CreateCommandIf, usage_lc, options_lc, CommandFlags::restAsItStands,
    arguments_lc, {1, 1}, variables_lc};

enum ExitNumber : unsigned int
{
    missingThen = 3,
    emptyThen = 4,
    emptyElse = 5,
    badCommandList = 9
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

If::If() : Command(record_lc) {}

ExitCode If::Main(ArgumentList& arguments, Options& options)
{
    if (arguments.Count() == 0)
        return ExitCode(CommonExit::wrongCount);
    WString separator = L";";
    options.TryGetString(separator_lc, separator);
    const bool verbose = options.TryGetFlag(verbose_lc);
    InheritRecordHeader(options, headerName);

    Statement statement;
    ExitCode failure = SplitStatement(arguments.At(0), statement);
    if (!failure.IsError())
        failure = Start(options);
    bool holds = false;
    if (!failure.IsError())
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
        return Refuse(missingThen, L"THEN is missing" + Hints::AskForKeyword(text, {L"THEN"}, GetEnvironment()));
    const bool hasElse = lists.TrySplitAtKeyword(L"ELSE", statement.thenList, statement.elseList);
    if (!hasElse)
        statement.thenList = lists;
    if (statement.thenList.IsEmpty())
        return Refuse(emptyThen, L"No command after THEN");
    if (hasElse && statement.elseList.IsEmpty())
        return Refuse(emptyElse, L"No command after ELSE");
    return ExitCode(0);
}

void If::RunCommandList(const WString& list, const WString& separator)
{
    for (const WString& command : SplitCommandList(list, separator, badCommandList))
        Run(command, GetPipe(), CommandFlags::inheritedOutput);
}

void If::ShowUsage()
{
    WriteUsage(L"Supported operators in the condition:", L"Supported functions in the condition:");
}
