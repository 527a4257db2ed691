#include "While.h"

#include "Hints.h"
#include "Instrument/System.h"

#include <limits>

namespace {
constexpr wchar_t indexName[] = L"i";
constexpr wchar_t exitCodeName[] = L"EC_While";
constexpr wchar_t headerName[] = L"RH_WHILE";

constexpr UsageLine usage_lc[] = {
    L"Usage: While <condition> Do <command>[;...]",
    L" Conditional statement, executes a command(s) while the condition",
    L" is true.",
    L"Arguments:",
    L" <condition>    The condition that is to be evaluated.",
    L"                 The operators and functions that can be used",
    L"                 are listed below.",
    L" <command>     Command(s) with arguments that is to be run while the",
    L"                 condition is true.",
    L"Options: (Must be specified before the condition)",
    L"  -c<maxCount> Max number of iterations.",
    L"  -er<exitCodes> Ignore if any of the commands after DO fails with an exit code",
    L"                 that matches any exit code in the specified list.",
    L"                 The listed exit code(s) may contain wildcards (*/?).",
    L"  -l<char> Separator to use between commands when multiple commands are used.",
    L"           Default: ;",
    L"  -v     Verbose mode, display the outcome of the condition and any errors.",
    L"  -w<wait> Wait time in seconds between each iteration (max 3 decimals allowed)",
    L"  -r<id> Standard record header option. This option can be inherited by the",
    {L"         conditionally started command through the %%E{%s} or", L"RecordHeader"},
    L"          %%E{RH_WHILE} variable.",
    L"",
    L"Environment variables:",
    L"  i        - loop index, starting at 1",
    L"  EC_While - Suppressed exit code from the started commands, \"0\" if successful.",
    L"             Only available when the -er option is used.",
    L"Example: Loop until 10, using the automatic loop index i and write the values",
    L"          to the terminal, one second delay between lines.",
    L" WHILE -w1 i<=1 DO ECHO %%E{i}",
    L"",
    L"Example: Loop until 10 and write each value to the terminal.",
    L" SET loopIndex=1",
    L" WHILE loopIndex<=10 DO ECHO %%E{loopIndex}; SET loopIndex=loopIndex+1",
    L"",
    L"Example: Wait for stable temperature",
    L" WHILE NOT(%%S{TempOpticsStable}) DO WAIT 1",
    L"",
    L"Example: Ignoring all exit codes starting with 9015.",
    L" WHILE -w1 -c10 -er9015:* i<=10 DO Assert i > 5",
    L"",
    L"Example: Retry writing until the file is no longer locked.",
    L" WHILE -w1 -c100 -er*:100:32 i<=1 OR EC_While<>\"0\" DO ECHO -ftest.txt OK",
    L"",
};

constexpr WholeNumberOption maxCount_lc(L"c", 8, 0, std::numeric_limits<int>::max(), L"End after so many iterations");
constexpr TextOption separator_lc(L"l", 9, 1, 1, L"Separate commands by this character instead of ;");
constexpr NumberOption wait_lc(L"w", 10, 0.001, 86400.0, L"Wait so many seconds after each iteration");
constexpr FlagOption verbose_lc(L"v", 6, L"Show how the condition came out and what is run, and log errors");
constexpr ExitCodePatternsOption ignoredCodes_lc(
    L"er", 12, 1, 1000, L"Go on after a failure with one of these exit codes");
constexpr OptionRecord options_lc[] = {
    maxCount_lc, separator_lc, wait_lc, verbose_lc, ignoredCodes_lc, recordHeaderOption};

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Expression}, {ArgumentKind::CommandList, L"DO", false, true}};
constexpr const wchar_t* variables_lc[] = {indexName, exitCodeName, L"RecordHeader", headerName};

constexpr CommandRecord record_lc = {L"While", 1064, CreateCommandWhile, usage_lc, options_lc,
    CommandFlags::restAsItStands, arguments_lc, {1, 1}, variables_lc};

enum ExitNumber : unsigned int
{
    missingDo = 3,
    badCommandList = 11
};
} // namespace

/// One statement: what its command line asks for.
struct While::Loop
{
    WString condition;
    WStringArray commands;
    unsigned int maxCount = std::numeric_limits<int>::max();
    int wait = 0; // milliseconds after each iteration
    WString separator = L";";
    WStringArray ignoredCodes; // patterns
    bool verbose = false;
};

CommandBase* CreateCommandWhile()
{
    return new While;
}

While::While() : Command(record_lc) {}

ExitCode While::Main(ArgumentList& arguments, Options& options)
{
    if (arguments.Count() == 0)
        return ExitCode(CommonExit::wrongCount);
    Loop loop;
    ReadOptions(options, loop);

    WString commandList;
    if (!arguments.At(0).TrySplitAtKeyword(L"DO", loop.condition, commandList))
        return Refuse(missingDo, L"DO is missing" + Hints::AskForKeyword(arguments.At(0), {L"DO"}, GetEnvironment()));
    loop.commands = SplitCommandList(commandList, loop.separator, badCommandList);
    if (const ExitCode refusal = Start(options); refusal.IsError())
        return refusal;
    return RunLoop(loop);
}

void While::ReadOptions(Options& options, Loop& loop)
{
    int maxCount = 0;
    if (options.TryGetInt(maxCount_lc, maxCount))
        loop.maxCount = static_cast<unsigned int>(maxCount);
    options.TryGetString(separator_lc, loop.separator);
    double seconds = 0;
    if (options.TryGetDouble(wait_lc, seconds))
        loop.wait = static_cast<int>(seconds * 1000.0);
    loop.verbose = options.TryGetFlag(verbose_lc);
    WString patterns;
    if (options.TryGetString(ignoredCodes_lc, patterns))
        loop.ignoredCodes =
            SplitList(patterns, ignoredCodes_lc.exitNumber, 30, L";,", L"Bad value of option -er" + patterns);
    InheritRecordHeader(options, headerName);
}

ExitCode While::RunLoop(const Loop& loop)
{
    const bool ignoresFailures = !loop.ignoredCodes.IsEmpty();
    if (ignoresFailures)
        GetEnvironment().SetString(exitCodeName, L"0");
    else
        GetEnvironment().TryDelete(exitCodeName);

    for (unsigned int count = 1; count <= loop.maxCount; ++count) {
        WaitForTimeControlPointIfRequested(); // no command to notice it when the list is empty
        GetEnvironment().SetUInt(indexName, count);
        bool holds = false;
        if (const ExitCode failure = EvaluateCondition(loop.condition, loop.verbose, holds); failure.IsError())
            return failure;
        if (loop.verbose)
            GetPipe().WriteLine(L"Condition is %s - Iteration: %d", holds ? L"true" : L"false", count);
        if (!holds)
            return ExitCode(0);

        if (ignoresFailures)
            GetEnvironment().SetString(exitCodeName, L"0");
        if (const ExitCode failure = RunCommands(loop); failure.IsError())
            return failure;
        if (loop.wait != 0)
            SleepAbortable(loop.wait);
    }
    if (loop.verbose)
        GetPipe().WriteLine(L"Max count exceeded");
    return ExitCode(0);
}

/// Runs the commands of one iteration; the first failure that is not ignored is the result.
ExitCode While::RunCommands(const Loop& loop)
{
    const unsigned int runFlags = loop.ignoredCodes.IsEmpty()
        ? CommandFlags::inheritedOutput
        : CommandFlags::toleratesFailure | CommandFlags::noFailureLog;
    for (const WString& command : loop.commands) {
        if (loop.verbose)
            GetPipe().WriteLine(L"Run command: %s", command);
        const ExitCode code = Run(command, GetPipe(), runFlags);
        if (!code.IsError())
            continue;
        GetEnvironment().SetString(exitCodeName, code.ToString());
        if (IsExitCodeIgnored(code, loop.ignoredCodes))
            continue;
        if ((GetFlags() & CommandFlags::noFailureLog) == 0)
            System::errorLog.WriteLine(L"%-12s %s", code.ToCString(), command);
        const WString& reason = GetRunMessage();
        SetFailureMessage(L"Failed: " + command + (reason.IsEmpty() ? L"" : L": ") + reason);
        for (const WString& note : GetRunNotes())
            AddNote(note);
        return code;
    }
    return ExitCode(0);
}

bool While::IsExitCodeIgnored(const ExitCode& code, const WStringArray& patterns)
{
    const WString text = code.ToString();
    for (const WString& pattern : patterns) {
        if (text.IsWildcardMatch(pattern.ToCString(), true))
            return true;
    }
    return false;
}

void While::ShowUsage()
{
    WriteUsage(L"Supported operators in the condition:", L"Supported functions in the condition:");
}
