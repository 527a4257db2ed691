#include "ScriptTools/ScriptRun.h"

#include "Commands/CommandFlags.h"
#include "Commands/CommandLine.h"
#include "Commands/RunObserver.h"
#include "Commands/ScriptReader.h"
#include "Commands/ScriptText.h"
#include "FileLines.h"
#include "RunningScript.h"
#include "ScriptRunner.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <algorithm>
#include <iterator>

namespace {
/// What stands behind the options of If, While, Calc, Assert or Set. Throws ExitCode when there is nothing.
WString GetArgument(const WString& command)
{
    WString name;
    WString rest;
    ArgumentList arguments;
    Options options;
    CommandLine::SplitName(command, name, rest);
    CommandLine::Parse(rest, CommandFlags::restAsItStands, arguments, options);
    if (arguments.Count() == 0)
        throw ExitCode(1);
    return arguments.At(0);
}

/// Finds the commands within a command, whose texts are without blanks at their ends. One that every run refuses has
/// none.
class PartReader
{
public:
    explicit PartReader(std::vector<LoneCommand::Part>& parts) : parts(parts) {}

    void Add(std::size_t start, const WString& text, bool isExpectedToFail)
    {
        parts.push_back({start, text, isExpectedToFail});
        WString name;
        WString rest;
        CommandLine::SplitName(text, name, rest);
        const WString command = name.ToLowerCase();
        const std::size_t end = start + text.Length();
        if (command == L"assertfail")
            AddExpected(end, rest);
        else if (command == L"if" || command == L"while")
            AddLists(end, rest, command == L"if", isExpectedToFail);
    }

private:
    std::vector<LoneCommand::Part>& parts;

    void AddExpected(std::size_t end, const WString& rest)
    {
        WString code;
        WString command;
        CommandLine::SplitName(rest, code, command);
        if (!command.IsEmpty())
            Add(end - command.Length(), command, true);
    }

    void AddLists(std::size_t end, const WString& rest, bool isIf, bool isExpectedToFail)
    try {
        ArgumentList arguments;
        Options options;
        CommandLine::Parse(rest, CommandFlags::restAsItStands, arguments, options);
        WString separator = L";";
        options.TryGetString(L"l", 1, separator, 1, 1);
        WString condition;
        WString list;
        if (arguments.Count() == 0 || !arguments.At(0).TrySplitAtKeyword(isIf ? L"THEN" : L"DO", condition, list))
            return;
        const std::size_t start = end - list.Length();
        WString thenList;
        WString elseList;
        if (isIf && list.TrySplitAtKeyword(L"ELSE", thenList, elseList)) {
            AddList(start, thenList, separator, isExpectedToFail);
            AddList(end - elseList.Length(), elseList, separator, isExpectedToFail);
        } else {
            AddList(start, list, separator, isExpectedToFail);
        }
    } catch (const ExitCode&) { // options that are refused
    }

    void AddList(std::size_t start, const WString& list, const WString& separator, bool isExpectedToFail)
    {
        WStringArray commands;
        list.GetWStringArray(commands, 1, 100, 1, 1, 4096, separator.ToCString());
        std::size_t at = 0;
        for (const WString& command : commands) {
            at = list.View().find(command.View(), at);
            Add(start + at, command, isExpectedToFail);
            at += command.Length();
        }
    }
};

/// Ends what runs for too long, as Ctrl-C would.
class Guard : public RunObserver
{
public:
    ~Guard() override { Abort::Clear(); }
    void OnBegin(const CommandRun&) noexcept override { Count(); }
    void OnCondition(const CommandRun&, const WString&, bool, const WString&) noexcept override { Count(); }

private:
    int count = 0;

    void Count()
    {
        constexpr int patience = 20'000;
        if (++count > patience)
            Abort::Request();
    }
};

class Recorder : public Guard
{
public:
    Recorder(const WString& script, ScriptRun& run) : script(script), run(run) {}
    ~Recorder() override
    {
        std::ranges::set_difference(succeeded, failed, std::inserter(run.succeeded, run.succeeded.end()));
    }

    void OnBegin(const CommandRun& begun) noexcept override
    {
        Guard::OnBegin(begun);
        innerFailures.resize(begun.depth + 2);
        innerFailures[begun.depth + 1] = ExitCode();
    }

    void OnEnd(const CommandRun& ended) noexcept override
    {
        const ExitCode& code = ended.outcome.code;
        const RunningScript& running = *RunningScript::GetInnermost();
        const bool isHere = running.name == script;
        if (!code.IsError() && isHere)
            succeeded.emplace(running.line, ended.line.Trim());
        if (!code.IsError() || IsHostError(code, HostError::ExitRequested))
            return;
        failed.emplace(running.line, ended.line.Trim());
        const ExitCode& inner = innerFailures[ended.depth + 1]; // may have come without the id of a command
        const bool isOwn = code.GetModule() != inner.GetModule() || code.GetNumber() != inner.GetNumber();
        innerFailures[ended.depth] = code;
        run.isClean = run.isClean && IsAnyCaller(ended, [](const CommandRun& caller) {
            return (caller.flags & CommandFlags::noFailureLog) != 0;
        });
        const bool isExpected =
            IsAnyCaller(ended, [](const CommandRun& caller) { return caller.outcome.command == L"AssertFail"; });
        if (isOwn && isHere && !CommandRunner::EndsCallers(code))
            run.failures.push_back({running.line, ended.line.Trim(), ended.outcome, isExpected});
    }

private:
    const WString& script;
    ScriptRun& run;
    std::vector<ExitCode> innerFailures; // the last one in each depth
    std::set<std::pair<unsigned int, WString>> succeeded;
    std::set<std::pair<unsigned int, WString>> failed;

    template <typename Condition>
    static bool IsAnyCaller(const CommandRun& innermost, const Condition& condition)
    {
        const CommandRun* run = &innermost;
        while (run && !condition(*run))
            run = run->caller;
        return run;
    }
};

/// How a command fails by itself.
struct LoneRun
{
    CommandRunner::Outcome outcome;
    bool hasPlace = false; // of the expression that is bad
    std::size_t place = 0; // in the command
};

class PlaceRecorder : public Guard
{
public:
    PlaceRecorder(const WString& command, LoneRun& run) : command(command), run(run) {}

    /// In If and While the expression stands right behind the options, in the others at the end.
    void OnBadExpression(const CommandRun& bad, const WString& expression, std::size_t place) noexcept override
    {
        if (bad.depth != 0)
            return;
        const bool hasLists = bad.outcome.command == L"If" || bad.outcome.command == L"While";
        const std::size_t tail = hasLists ? GetArgument(command).Length() : expression.Length();
        run.hasPlace = true;
        run.place = command.Length() - tail + place;
    }

private:
    const WString& command;
    LoneRun& run;
};
} // namespace

const LoneCommand::Part& LoneCommand::FindPart(const TextRange& place) const
{
    const std::size_t at = Locate(place);
    const auto innermost = std::find_if(parts.rbegin(), parts.rend(),
        [&](const Part& part) { return at >= part.start && at <= part.start + part.text.Length(); });
    return innermost == parts.rend() ? parts.front() : *innermost;
}

std::vector<LoneCommand> ReadCommands(const std::string& script)
{
    TextLines lines(script);
    ScriptReader reader(lines);
    std::vector<LoneCommand> commands;
    for (std::string text; reader.TryRead(text);) {
        const bool isSilenced = WString::FromUtf8(reader.GetLineBefore()).Trim() == L"# check: off";
        LoneCommand command = {reader.GetLine(), isSilenced, WString::FromUtf8(text), {}, {}};
        std::size_t start = 0;
        for (const std::size_t size : reader.GetLineSizes()) {
            command.lineStarts.push_back(WString::FromUtf8(text.substr(0, start)).Length());
            start += size;
        }
        const WString whole = command.text.Trim();
        PartReader(command.parts).Add(command.text.View().find(whole.View()), whole, false);
        commands.push_back(std::move(command));
    }
    return commands;
}

ScriptRun RunWhole(const std::string& path, const Environment& environment)
{
    ScriptRun run;
    const WString name = WString::FromUtf8(path);
    {
        const Recorder recorder(name, run);
        FileLines lines(path);
        ArrayPipe output;
        RunScript(lines, name, output, environment,
            [](const ScriptFailure& failure) { return !CommandRunner::EndsCallers(failure.outcome.code); });
    }
    return run;
}

namespace {
/// Runs a command as one of a script.
LoneRun RunAlone(const WString& command, const WString& path, const Environment& variables)
{
    LoneRun run;
    const PlaceRecorder recorder(command, run);
    const RunningScript script(path);
    ArrayPipe output;
    run.outcome = CommandRunner::Run(command, output, variables, 0);
    return run;
}

/// True for a message of a run, which may go on with what was probably meant.
bool IsMessage(const WString& told, const WString& found)
{
    return told == found || told.StartsWith(found + L" (did you mean ", false);
}

/// What is different when the command runs alone; `place` is that of the finding in the command.
std::string Compare(const LoneRun& alone, const WString& message, std::size_t place)
{
    if (!alone.outcome.code.IsError())
        return "succeeds by itself";
    if (!IsMessage(alone.outcome.message, message))
        return "fails by itself with: " + alone.outcome.message.ToUtf8();
    return alone.hasPlace && alone.place != place ? "fails by itself at " + std::to_string(alone.place + 1) : "";
}

/// Whether the expression of a command that does not evaluate it, because something else is wrong, fails by itself.
bool FailsAlone(const WString& command, const WString& message, std::size_t place, const Environment& variables)
try {
    const WString argument = GetArgument(command);
    WString expression = argument;
    WString list;
    if (!argument.TrySplitAtKeyword(L"THEN", expression, list))
        argument.TrySplitAtKeyword(L"DO", expression, list);
    const WString calc = L"Calc -q -- ";
    const LoneRun alone = RunAlone(calc + expression, L"", variables);
    const std::size_t start = command.Length() - argument.Length();
    return alone.hasPlace && Compare(alone, message, calc.Length() + place - start).empty();
} catch (const ExitCode&) { // there is none
    return false;
}
} // namespace

/// Whether the finding says that the command fails, whenever it is run where no error is tested.
static bool TellsOfFailure(const Finding& finding, const WString& command)
{
    constexpr const wchar_t* failures[] = {L"S021", L"S022", L"S023", L"S024", L"S054", L"S055", L"S058", L"S059"};
    constexpr const wchar_t* tests[] = {L"if(", L"iserr", L"isna", L"defined", L"initifna"};
    const auto isCode = [&](const wchar_t* code) { return finding.code == code; };
    const auto isTest = [text = command.ToLowerCase()](const wchar_t* test) { return text.IndexOf(test) >= 0; };
    return finding.isError || (std::ranges::any_of(failures, isCode) && std::ranges::none_of(tests, isTest));
}

std::string FindObjection(const Finding& finding, const LoneCommand& command, const ScriptRun& run, const WString& path,
    const Environment& variables)
{
    const LoneCommand::Part& part = command.FindPart(finding.place);
    const std::size_t place = command.Locate(finding.place) - part.start;
    const bool isSkipped = part.text.StartsWith(L"Set -i", true); // where the variable exists
    if (finding.isError) {
        if (part.isExpectedToFail)
            return "is expected to fail";
        const std::string difference =
            Compare(RunAlone(part.text, path, isSkipped ? Environment() : variables), finding.message, place);
        if (!difference.empty())
            return FailsAlone(part.text, finding.message, place, variables) ? "" : difference;
    }
    if (!isSkipped && TellsOfFailure(finding, part.text) && run.succeeded.contains({command.line, part.text}))
        return "succeeds in the script";
    return "";
}

const LoneCommand* FindCommand(const std::vector<LoneCommand>& commands, const Finding& finding)
{
    const auto found =
        std::ranges::find_if(commands, [&](const LoneCommand& each) { return each.Contains(finding.place); });
    return found == commands.end() ? nullptr : &*found;
}

std::string Describe(const Finding& finding)
{
    return finding.code.ToUtf8() + " at " + std::to_string(finding.place.line + 1) + ":" +
        std::to_string(finding.place.start + 1) + "-" + std::to_string(finding.place.end) + " " +
        finding.message.ToUtf8();
}
