#include "ListCheck.h"

#include "ExpressionEvaluator.h"
#include "Instrument/NameOrder.h"
#include "Text/CharacterCase.h"
#include "Text/QuoteTracker.h"

#include <algorithm>
#include <set>

namespace {
using View = std::wstring_view;

/// The keyword that the command could go on with, or null.
const wchar_t* GetOpenKeyword(const CommandText& command)
{
    if (!command.entry || !command.entry->record || command.missing)
        return nullptr;
    const auto records = command.entry->record->arguments;
    const bool lacksPart = !command.parts.empty() && command.parts.size() < records.size();
    const ArgumentRecord* const next = lacksPart ? &records[command.parts.size()] : nullptr;
    if (next && next->kind == ArgumentKind::CommandList)
        return next->separator;
    // The last command of a list takes the keyword as well: If a Then While b Do c Else d.
    const bool hasInner = !command.parts.empty() && !command.parts.back().commands.empty();
    return hasInner ? GetOpenKeyword(command.parts.back().commands.back()) : nullptr;
}

bool HasKeyword(const CommandText& command, const wchar_t* keyword)
{
    return command.entry && command.entry->record &&
        std::ranges::any_of(command.entry->record->arguments,
            [&](const ArgumentRecord& part) { return EqualsIgnoreCase(part.separator, keyword); });
}

/// Whether the condition consists of constants and of variables that none of the commands sets.
class LoopReader
{
public:
    LoopReader(View line, const CommandText& loop) : line(line), loop(loop) {}

    bool IsEndless() const;

private:
    const View line;
    const CommandText& loop;

    bool MayEnd(const CommandText& inner) const;
    std::set<WString, NameOrder> ListChanging() const;
};

/// What changes nothing that a condition can read, and does not fail.
bool LoopReader::MayEnd(const CommandText& inner) const
{
    constexpr View harmless[] = {L"Echo", L"Set", L"If", L"Calc"};
    return !inner.entry || std::ranges::find(harmless, inner.entry->name.View()) == std::end(harmless);
}

/// The names whose values are others from one iteration to the next.
std::set<WString, NameOrder> LoopReader::ListChanging() const
{
    std::set<WString, NameOrder> names = {L"RND", L"Timer"};
    VisitCommands(loop, [&](const CommandText& inner) {
        const bool sets = inner.parts.size() == 2 || (!inner.parts.empty() && inner.HasOption(L"z"));
        if (sets && inner.parts[0].record->kind == ArgumentKind::Variable)
            names.emplace(inner.parts[0].place.In(line));
        if (inner.entry && inner.entry->record)
            names.insert(inner.entry->record->variables.begin(), inner.entry->record->variables.end());
    });
    return names;
}

/// Whether the condition alone, without any variable, is false.
bool IsNeverTrue(View condition)
{
    bool holds = true;
    return ExpressionEvaluator(nullptr, EvaluatorFlags::readNothing).TryEvaluateBool(WString(condition), holds) &&
        !holds;
}

bool LoopReader::IsEndless() const
{
    bool mayEnd = false;
    for (const CommandText& command : loop.parts.back().commands)
        VisitCommands(command, [&](const CommandText& inner) { mayEnd = mayEnd || MayEnd(inner); });
    if (mayEnd)
        return false;
    const View condition = loop.parts[0].place.In(line);
    const std::set<WString, NameOrder> changing = ListChanging();
    QuoteTracker quotes;
    for (std::size_t position = 0; position < condition.size();) {
        const bool isOutside = quotes.Next(condition.substr(position)) == QuoteTracker::Role::Outside;
        const wchar_t ch = condition[position];
        std::size_t end = position + 1;
        if (isOutside && (ch == L'%' || ch == L'('))
            return false; // what a reference or a function yields may change
        if (isOutside && IsNameCharacter(ch)) {
            while (end < condition.size() && IsNameCharacter(condition[end]))
                ++end;
            if (!IsDecimalDigit(ch) && changing.contains(WString(condition.substr(position, end - position))))
                return false;
        }
        position = end;
    }
    return !IsNeverTrue(condition);
}
} // namespace

std::optional<LineFinding> FindCutList(View line, const CommandText& command, const PartText& list)
{
    const wchar_t* open = nullptr;
    for (std::size_t index = 0; index < list.commands.size(); ++index) {
        const CommandText& inner = list.commands[index];
        Span keyword;
        if (open && !HasKeyword(inner, open) && TryFindSeparator(line, inner.place, open, keyword)) {
            const auto behind = std::ranges::find_if(
                list.delimiters, [&](const Span& delimiter) { return delimiter.end > inner.place.start; });
            const Span delimiter = *std::prev(behind);
            return LineFinding{false, Findings::CutList, delimiter,
                WString::Format(L"The %s ends a command of %s here, in front of its %s; give %s another separator: -l|",
                    WString(delimiter.In(line)), command.entry->name, open, command.entry->name)};
        }
        const wchar_t* const next = GetOpenKeyword(inner);
        open = next ? next : open;
    }
    return std::nullopt;
}

bool IsFailureSwallowed(const CommandText& command)
{
    return command.entry->name == L"If";
}

std::optional<LineFinding> FindEndlessLoop(View line, const CommandText& command)
{
    if (command.entry->name != L"While" || command.parts.size() != 2 || command.HasOption(L"c") ||
        command.HasOption(L"w") || command.parts[0].place.IsEmpty() || !LoopReader(line, command).IsEndless())
        return std::nullopt;
    return LineFinding{false, Findings::EndlessLoop, command.parts[0].place,
        L"Nothing changes this condition, and the loop has neither a count nor a wait"};
}
