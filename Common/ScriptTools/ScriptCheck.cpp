#include "ScriptCheck.h"

#include "CommandCheck.h"
#include "Commands/CommandRunner.h"
#include "Commands/ScriptReader.h"
#include "Commands/ScriptText.h"
#include "Refusal.h"
#include "ScriptFiles.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <algorithm>
#include <tuple>

namespace {
/// A command of the script, whose lines are joined.
struct JoinedLines
{
    WString text{};
    std::vector<std::size_t> starts{}; // of the lines in it
    std::size_t firstLine = 0;

    TextRange Find(Span place) const;
};

/// What goes beyond the end of its line is cut off.
TextRange JoinedLines::Find(Span place) const
{
    const auto next = std::upper_bound(starts.begin(), starts.end(), place.start);
    const auto index = static_cast<std::size_t>(next - starts.begin()) - 1;
    const std::size_t end = std::min(place.end, next == starts.end() ? text.Length() : *next);
    return {firstLine + index, place.start - starts[index], std::max(end, place.start) - starts[index]};
}

JoinedLines Join(std::string_view command, const ScriptReader& reader)
{
    JoinedLines joined;
    joined.firstLine = reader.GetLine() - 1;
    for (const std::size_t size : reader.GetLineSizes()) {
        joined.starts.push_back(joined.text.Length());
        joined.text += WString::FromUtf8(command.substr(0, size));
        command.remove_prefix(size);
    }
    return joined;
}

/// The codes that a comment in front of a command silences.
class Silence
{
public:
    explicit Silence(const std::string& lineBefore);

    bool Covers(const wchar_t* code) const
    {
        return isOff && (codes.IsEmpty() || std::ranges::any_of(codes, [&](const WString& each) {
            return each.Equals(code, true);
        }));
    }

private:
    bool isOff = false;
    WStringArray codes;
};

/// "# check: off S012 S013", or without codes.
Silence::Silence(const std::string& lineBefore)
{
    if (lineBefore.find("check:") == std::string::npos)
        return;
    const WString line = WString::FromUtf8(lineBefore);
    std::size_t position = 0;
    const auto next = [&] { return line.StrTok(L" \t#", position); };
    isOff = next().Equals(L"check:", true) && next().Equals(L"off", true);
    for (WString code = next(); isOff && !code.IsEmpty(); code = next())
        codes.Add(code);
}

class ScriptCheck
{
public:
    ScriptCheck(const std::string& path, const Environment& variables) : path(path), known(variables), files(path) {}

    void Read(std::string_view script);
    ScriptAnalysis TakeAnalysis();

private:
    const std::string& path;
    KnownNames known;
    ScriptFiles files;
    ScriptAnalysis analysis;
    bool isReached = true; // no Exit stands in front
    bool goesOn = true;    // up to here, for certain

    // Of the command that is being read:
    JoinedLines joined;
    std::vector<LineFinding> findings;

    void CheckCommand(const ScriptReader& reader);
    void CheckInOrder(const CommandText& command);
    void CheckBackslash(const ScriptReader& reader);
    void CheckRuns(const CommandText& command, bool isConditional);
    void AddNames(const CommandText& command);
    void AddSymbols(const CommandText& command);
};

void ScriptCheck::Read(std::string_view script)
{
    TextLines lines(script);
    ScriptReader reader(lines);
    for (std::string command; reader.TryRead(command);) {
        Abort::ThrowIfRequested();
        std::ranges::replace(command, '\0', '\xFF'); // as a run does
        joined = Join(command, reader);
        findings.clear();
        if (command.size() > CommandRunner::maxLineLength)
            findings.push_back({true, Findings::TooLong, {0, joined.text.Length()},
                HostException(HostError::CommandTooLong).GetMessage()});
        else
            CheckCommand(reader);
        const Silence silence(reader.GetLineBefore());
        for (const LineFinding& finding : findings) {
            if (!silence.Covers(finding.code))
                analysis.findings.push_back(
                    {finding.isError, finding.code, joined.Find(finding.place), finding.message, finding.suggestion});
        }
    }
}

void ScriptCheck::CheckCommand(const ScriptReader& reader)
{
    const std::wstring_view line = joined.text.View();
    const CommandText command = ReadCommandText(line, {0, line.size()});
    if (!isReached)
        findings.push_back({false, Findings::Unreachable, command.place, L"Exit in front of this ends the script"});
    isReached = true; // which is said once
    CheckInOrder(command);
    CheckRuns(command, !goesOn);
    CheckBackslash(reader);
    AddSymbols(command);
    goesOn = goesOn && findings.empty() && GoesOn(command);
    isReached = !IsExit(command) || FindRefusal(line, command, known);
}

bool HasLists(const CommandText& command)
{
    return std::ranges::any_of(
        command.parts, [](const PartText& part) { return part.record->kind == ArgumentKind::CommandList; });
}

/// Checks the command, each command of its lists with what is known by then. A statement among them may wait for what
/// a later command of a loop sets, as any may where failures are tolerated.
void ScriptCheck::CheckInOrder(const CommandText& command)
{
    const std::wstring_view line = joined.text.View();
    const bool isTolerant = std::ranges::any_of(command.options,
        [](const OptionText& option) { return option.row && option.row->kind == OptionKind::ExitCodePatterns; });
    std::vector<const CommandText*> later;
    if (HasLists(command))
        known.AddFrom(line, command); // what it sets itself
    CommandCheck(line, known, findings, [&](const CommandText& inner) {
        if (isTolerant || HasLists(inner))
            later.push_back(&inner);
        else
            CommandCheck(line, known, findings).Check(inner);
        AddNames(inner);
    }).Check(command);
    AddNames(command);
    for (const CommandText* const inner : later)
        CommandCheck(line, known, findings).Check(*inner);
}

/// A blank behind the final backslash keeps the line from being continued.
void ScriptCheck::CheckBackslash(const ScriptReader& reader)
{
    if (reader.GetSpoiltLine() < reader.GetLine())
        return;
    const std::wstring_view line = joined.text.View();
    findings.push_back({false, Findings::SpoiltBackslash, {line.find_last_of(L'\\'), line.size()},
        L"A blank stands behind the final backslash, so the line is not continued"});
}

/// What a command of the kind AssertFail runs is expected to fail.
void ScriptCheck::CheckRuns(const CommandText& command, bool isConditional)
{
    for (const PartText& part : command.parts) {
        if (part.record->kind != ArgumentKind::CommandList)
            continue;
        for (const CommandText& inner : part.commands)
            CheckRuns(inner, true);
    }
    const WString name = GetRunFile(joined.text.View(), command);
    if (name.IsEmpty() || known.IsMade(L'F', name))
        return;
    const std::string file = ScriptFiles::Find(name, path);
    if (const WString fault = files.GetFault(file); !fault.IsEmpty()) {
        findings.push_back({true, Findings::NoScript, command.words[0], fault});
        return;
    }
    const ScriptFiles::Recursion recursion = files.FindRecursion(file);
    if (recursion == ScriptFiles::Recursion::Certain && !isConditional)
        findings.push_back(
            {true, Findings::Recursion, command.words[0], HostException(HostError::NestedTooDeeply).GetMessage()});
    else if (recursion != ScriptFiles::Recursion::None)
        findings.push_back({false, Findings::Recursion, command.words[0], L"This script may run itself without end"});
}

void ScriptCheck::AddNames(const CommandText& command)
{
    VisitCommands(command, [&](const CommandText& each) {
        known.AddFrom(joined.text.View(), each);
        if (const WString name = GetRunFile(joined.text.View(), each); !name.IsEmpty())
            files.AddNames(ScriptFiles::Find(name, path), known);
        else if (IsRun(each))
            known.AddAll(L'E');
    });
}

void ScriptCheck::AddSymbols(const CommandText& command)
{
    const std::wstring_view line = joined.text.View();
    VisitCommands(command, [&](const CommandText& each) {
        const bool assigns = each.parts.size() == 2 && each.parts[0].record->kind == ArgumentKind::Variable;
        if (assigns)
            analysis.symbols.push_back({ScriptSymbol::Kind::Variable, WString(each.parts[0].place.In(line)),
                WString(each.parts[1].place.In(line)), joined.Find(each.parts[0].place)});
        if (const WString name = GetRunFile(line, each); !name.IsEmpty())
            analysis.symbols.push_back({ScriptSymbol::Kind::Script, name, WString(), joined.Find(each.words[0])});
    });
}

ScriptAnalysis ScriptCheck::TakeAnalysis()
{
    std::ranges::stable_sort(analysis.findings, {},
        [](const Finding& finding) { return std::tuple(finding.place.line, finding.place.start); });
    return std::move(analysis);
}
} // namespace

ScriptAnalysis CheckScript(std::string_view script, const std::string& path, const Environment& variables)
{
    ScriptCheck check(path, variables);
    check.Read(script);
    return check.TakeAnalysis();
}
