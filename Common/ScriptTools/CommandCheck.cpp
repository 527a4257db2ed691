#include "CommandCheck.h"

#include "Commands/CommandLine.h"
#include "ExitCodePattern.h"
#include "ExpressionCheck.h"
#include "ExpressionFindings.h"
#include "ListCheck.h"
#include "Refusal.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"
#include "Text/QuoteTracker.h"
#include "Text/ReferenceText.h"

#include <algorithm>
#include <set>

namespace {
using View = std::wstring_view;

/// What is said, by the letter of a reference's kind, where there is none of the name.
struct KindRow
{
    wchar_t kind;
    const wchar_t* code;
};

constexpr KindRow kinds_lc[] = {
    {L'E', Findings::VariableNotSet},
    {L'S', Findings::UnknownStatusItem},
    {L'C', Findings::UnknownSetting},
    {L'U', Findings::UnknownCounter},
};

const wchar_t* GetCode(wchar_t kind)
{
    return std::ranges::find(kinds_lc, kind, &KindRow::kind)->code;
}

bool IsStatement(const CommandText& command)
{
    return std::ranges::any_of(command.entry->record->arguments,
        [](const ArgumentRecord& part) { return part.kind == ArgumentKind::CommandList; });
}

/// What the command evaluates an expression for.
ExpressionUse GetUse(const CommandText& command)
{
    if (command.entry->name == L"Assert")
        return ExpressionUse::Assertion;
    return IsStatement(command) ? ExpressionUse::Condition : ExpressionUse::Value;
}

/// Whether it tells of what is on the bench, which a line of the script may change.
bool IsOfItem(const ExpressionFinding& finding)
{
    const View code(finding.code);
    return code == Findings::UnknownReference || code == Findings::BadReference;
}

/// Whether it is a loop of no iteration at all.
bool IsCountedOut(const CommandText& command)
{
    return IsStatement(command) && std::ranges::any_of(command.options, [](const OptionText& option) {
        return option.row && option.row->kind == OptionKind::WholeNumber &&
            option.text.Substring(static_cast<unsigned int>(View(option.row->name).size())) == L"0";
    });
}
} // namespace

bool IsExit(const CommandText& command)
{
    return command.entry && command.entry->name == L"Exit";
}

bool GoesOn(const CommandText& command)
{
    constexpr View harmless[] = {L"Calc", L"Echo", L"Set", L"Wait"};
    return command.entry && command.references.empty() &&
        std::ranges::find(harmless, command.entry->name.View()) != std::end(harmless);
}

void CommandCheck::Check(const CommandText& command)
{
    if (command.place.IsEmpty())
        return;
    const std::optional<LineFinding> refusal = FindRefusal(line, command, known);
    if (refusal)
        findings.push_back(*refusal);
    if (!command.entry || !command.entry->record || !command.isClosed)
        return;
    CheckReferences(command);
    CheckOptions(command);
    CheckComment(command);
    const View refused = refusal ? View(refusal->code) : View();
    if (refusal && (!IsStatement(command) || refused == Findings::BadOptionValue)) // of what separates, maybe
        return;
    for (const PartText& part : command.parts) {
        if (refused != Findings::UnknownOption ||
            part.record->kind != ArgumentKind::Expression) // which may have been read as an option
            CheckPart(command, part);
    }
    if (const auto loop = FindEndlessLoop(line, command); loop && !refusal)
        findings.push_back(*loop);
    CheckNearlyElse(command);
}

void CommandCheck::CheckReferences(const CommandText& command)
{
    for (const Span& place : command.references) {
        const ReferenceText::Reference read = ReferenceText::Read(place.In(line));
        const WString name(read.name);
        const bool isSetting =
            read.kind != L'C' || ReferenceText::ReadSettingName(read.name).fault == ReferenceText::Fault::None;
        if (read.fault != ReferenceText::Fault::None || !isSetting || known.Contains(read.kind, name))
            continue;
        const WString meant = known.FindSimilar(read.kind, name);
        const WString opening(place.In(line).substr(0, 3));
        Warn(GetCode(read.kind), place,
            HostException(HostError::UnknownReference, WString(place.In(line))).GetMessage(),
            meant.IsEmpty() ? meant : opening + meant + L"}");
    }
}

void CommandCheck::CheckOptions(const CommandText& command)
{
    std::set<const OptionRecord*> given;
    for (const OptionText& option : command.options) {
        if (!option.row)
            continue;
        if (!given.insert(option.row).second)
            Warn(Findings::OptionTwice, option.place,
                WString::Format(L"Option -%s is given twice; the last one counts", option.row->name));
        if (option.row->kind == OptionKind::ExitCodePatterns && option.isJudged)
            CheckPatterns(option);
    }
}

void CommandCheck::CheckPatterns(const OptionText& option)
{
    const std::size_t start = option.place.start + 1 + View(option.row->name).size();
    for (const wchar_t separator : {L';', L','}) {
        for (const Span& piece : SplitList(line, {start, option.place.end}, separator)) {
            const Span pattern = Trim(line, piece);
            const View text = pattern.In(line);
            const bool isOne = text.find_first_of(L";,\"") == View::npos;
            const bool isRepeated = separator == L',' && std::ranges::any_of(findings, [&](const LineFinding& former) {
                return former.place.start == pattern.start && View(former.code) == Findings::DeadPattern;
            });
            if (isOne && !text.empty() && !isRepeated && !CanMatchFailure(WString(text)))
                Warn(Findings::DeadPattern, pattern, L"No exit code of a failure matches " + WString(text));
        }
    }
}

/// Text behind " #" or " //" is part of the command. Where a command takes any words it may be meant.
void CommandCheck::CheckComment(const CommandText& command)
{
    const CommandRecord& record = *command.entry->record;
    if (record.argumentCount.most == ArgumentCount::any)
        return;
    const bool endsWithCommands = !record.arguments.empty() &&
        (record.arguments.back().kind == ArgumentKind::CommandList ||
            record.arguments.back().kind == ArgumentKind::Command);
    if (endsWithCommands) // which are asked themselves
        return;
    QuoteTracker quotes;
    bool isBehindBlank = false;
    for (std::size_t position = command.name.end; position < command.place.end; ++position) {
        const View rest = line.substr(position, command.place.end - position);
        const bool isOutside = quotes.Next(rest) == QuoteTracker::Role::Outside;
        if (isOutside && isBehindBlank && (rest.starts_with(L'#') || rest.starts_with(L"//"))) {
            Warn(Findings::CommentBehind, {position, command.place.end},
                L"This is read as part of the command; a comment stands on a line of its own, behind #");
            return;
        }
        isBehindBlank = isOutside && IsWhiteSpace(line[position]);
    }
}

void CommandCheck::CheckPart(const CommandText& command, const PartText& part)
{
    switch (part.record->kind) {
    case ArgumentKind::Expression: CheckExpressionPart(command, part); break;
    case ArgumentKind::CommandList: CheckList(command, part); break;
    case ArgumentKind::ExitCodePattern:
        if (!CanMatchFailure(WString(part.place.In(line))))
            Warn(Findings::DeadPattern, part.place,
                L"No exit code of a failure matches " + WString(part.place.In(line)));
        break;
    default:
        if (GetReferenceKind(part.record->kind) != 0)
            CheckName(command, part);
    }
    // What is run by a part of the kind Command is expected to fail.
}

/// An expression that is assigned may be left out; another one that is not there may have been read as an option.
void CommandCheck::CheckExpressionPart(const CommandText& command, const PartText& part)
{
    const bool mayBeEmpty = part.record->mayBeEmpty ||
        std::ranges::any_of(command.options, [](const OptionText& option) { return !option.row; });
    if ((part.place.IsEmpty() && mayBeEmpty) || command.missing)
        return;
    std::vector<ExpressionFinding> found;
    CheckExpression(
        part.place.In(line), GetUse(command), [this](const WString& name) { return known.IsMade(L'E', name); }, found,
        [this](SimilarName& similar) { known.Offer(L'E', similar); });
    const bool isEvaluated = !IsCountedOut(command);
    for (const ExpressionFinding& finding : found) {
        const Span place = {part.place.start + finding.start, part.place.start + finding.end};
        const bool isMade = IsOfItem(finding) && IsMadeItem(place.In(line));
        if ((isEvaluated || finding.isError) && !isMade)
            Add(finding.isError, finding.code, place, finding.message, finding.suggestion);
    }
}

/// Whether it names, as a reference or in quotes, what a line of the script has made.
bool CommandCheck::IsMadeItem(View text) const
{
    const ReferenceText::Reference read = ReferenceText::Read(text);
    if (read.fault == ReferenceText::Fault::None)
        return known.IsMade(read.kind, WString(read.name));
    const WString name = CommandLine::Unquote(text);
    return known.IsSectionMade(name) || known.IsMade(L'S', name) || known.IsMade(L'U', name);
}

/// The name of what a command shows or sets.
void CommandCheck::CheckName(const CommandText& command, const PartText& part)
{
    const wchar_t kind = GetReferenceKind(part.record->kind);
    const View name = part.place.In(line);
    const bool isAssigned = command.parts.size() > 1;
    const bool makes = isAssigned && (kind == L'E' || kind == L'U' || command.HasOption(L"n"));
    const bool isJudged = !name.empty() && name.find_first_of(L"*?\"") == View::npos &&
        !command.DependsOnValue(part.place) && !(kind == L'E' && command.HasOption(L"z"));
    if (makes || !isJudged || known.Contains(kind, WString(name)))
        return;
    Warn(GetCode(kind), part.place, (kind == L'E' ? L"No such variable: " : L"There is no ") + WString(name),
        known.FindSimilar(kind, WString(name)));
}

void CommandCheck::CheckList(const CommandText& command, const PartText& part)
{
    if (const auto cut = FindCutList(line, command, part))
        findings.push_back(*cut);
    bool isReached = true;
    for (const CommandText& inner : part.commands) {
        if (!isReached)
            Warn(Findings::Unreachable, inner.place, L"Exit in front of this ends the script");
        isReached = isReached && (!IsExit(inner) || FindRefusal(line, inner, known));
        if (IsFailureSwallowed(command))
            CheckSwallowed(inner);
        if (visit)
            visit(inner);
        else
            Check(inner);
    }
}

/// What is there to fail is no use where failures are passed over.
void CommandCheck::CheckSwallowed(const CommandText& inner)
{
    if (inner.entry && (inner.entry->name == L"Assert" || inner.entry->name == L"AssertFail"))
        Warn(Findings::SwallowedFailure, inner.name,
            L"If goes on when this fails, and succeeds; assert the condition outside of If");
}

void CommandCheck::CheckNearlyElse(const CommandText& command)
{
    const auto records = command.entry->record->arguments;
    const bool lacksPart = !command.missing && command.parts.size() >= 2 && command.parts.size() < records.size();
    if (!lacksPart || records[command.parts.size()].kind != ArgumentKind::CommandList)
        return;
    const wchar_t* const keyword = records[command.parts.size()].separator;
    for (const CommandText& inner : command.parts.back().commands) {
        if (inner.entry && inner.entry->record && IsStatement(inner))
            continue; // which looks by itself
        const Span nearly = FindNearly(line, inner.place, keyword, known);
        if (nearly.IsEmpty() || nearly.end == command.place.end)
            continue;
        Warn(Findings::NearlyElse, nearly, L"\"" + WString(nearly.In(line)) + L"\" is read as part of the command",
            keyword);
        return;
    }
}
