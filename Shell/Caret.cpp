#include "Caret.h"

#include "Commands/StandardOutput.h"
#include "Report.h"
#include "Text/CharacterCase.h"
#include "Window.h"

#include <algorithm>
#include <utility>

#include <unistd.h>

namespace {
using View = std::wstring_view;

constexpr std::size_t indent = 2;

/// Where the text stands in the line as words, from `start` on.
std::size_t FindWords(View line, View text, std::size_t start)
{
    const auto isBlank = [&](std::size_t index) { return index >= line.size() || IsWhiteSpace(line[index]); };
    for (std::size_t found = line.find(text, start); found != View::npos; found = line.find(text, found + 1)) {
        if ((found == 0 || isBlank(found - 1) || line[found - 1] == L';') &&
            (isBlank(found + text.size()) || line[found + text.size()] == L';'))
            return found;
    }
    return line.find(text, start);
}

/// Where the command stands in the line that has run it; npos when it stands there twice, for one of the two was not
/// run.
std::size_t FindCommand(View line, View command)
{
    const std::size_t found = FindWords(line, command, 0);
    const bool isTwice = found != View::npos && line.find(command, found + 1) != View::npos;
    return isTwice ? View::npos : found;
}

/// Where the command has its expression: at the end of its line, or in front of a keyword.
std::size_t FindExpression(const CommandRun& run, View expression)
{
    const CommandRegistry::Entry* const entry = CommandRegistry::FindOrNull(run.outcome.command);
    const bool isLast = entry && entry->record && !entry->record->arguments.empty() &&
        entry->record->arguments.back().kind == ArgumentKind::Expression;
    const View line = run.line.View();
    return isLast ? line.rfind(expression) : FindWords(line, expression, run.outcome.command.Length());
}

/// The part of a line that is shown where there is no room for all of it, and the cells in front of the place in it.
struct Part
{
    WString text;
    std::size_t cells;
};

Part TakePart(View line, std::size_t place, std::size_t width)
{
    std::size_t cells = CountCells(line.substr(0, place));
    if (CountCells(line) <= width)
        return {WString(line), cells};
    std::size_t start = 0;
    for (; cells > width * 2 / 3; ++start)
        cells -= CountCells(line.substr(start, 1));
    const bool isCut = start > 0;
    const WString text = ClipToCells(line.substr(start), width - isCut);
    return {(isCut ? L"\u2026" : L"") + text, cells + isCut};
}

std::size_t GetRoom()
{
    constexpr std::size_t much = 1000; // where no window ends the line
    return isatty(STDERR_FILENO) == 1 ? Window(STDERR_FILENO).columns - 1 : much;
}

/// Whether the terminal that is written to shows the expression and a caret under the place.
bool IsShown(View expression, std::size_t place, std::size_t room)
{
    const StandardOutput& output = StandardOutput::Get();
    return isatty(STDERR_FILENO) == 1 && output.HasShown(expression) && output.HasShown(L"^") &&
        CountCells(expression) + indent <= room && CountCells(expression.substr(0, place)) == place;
}
} // namespace

static Caret* caret_lc = nullptr;

Caret::Caret(const PromptCommands& commands) : commands(commands)
{
    caret_lc = this;
}

Caret::~Caret()
{
    caret_lc = nullptr;
}

Caret* Caret::GetOrNull() noexcept
{
    return caret_lc;
}

void Caret::OnBegin(const CommandRun& run) noexcept
{
    last.reset();
    if (!run.caller)
        kept.reset();
}

void Caret::OnBadExpression(const CommandRun& run, const WString& expression, std::size_t index) noexcept
try {
    std::size_t position = FindExpression(run, expression.View());
    const CommandRun* outermost = &run;
    for (; outermost->caller && position != View::npos; outermost = outermost->caller) {
        const std::size_t command = FindCommand(outermost->caller->line.View(), outermost->line.Trim().View());
        position = command == View::npos ? command : command + position;
    }
    if (position == View::npos || position + index > outermost->line.Length())
        return;
    last = {expression, index, outermost->line.Length() - position - index};
} catch (const std::bad_alloc&) { // the failure is told without
}

/// What ends well has no fault to show, whatever it has passed over.
void Caret::OnEnd(const CommandRun& run) noexcept
{
    if (!run.outcome.code.IsError())
        last.reset();
}

std::optional<Caret::Place> Caret::TakeOfLine()
{
    const auto ofInner = std::exchange(kept, std::nullopt);
    return ofInner ? *ofInner : last;
}

void Caret::Show(const std::optional<Place>& place) const
{
    const WString& typed = commands.GetTyped();
    const std::size_t room = GetRoom();
    if (!place || place->fromEnd > typed.Length() || IsShown(place->expression.View(), place->index, room))
        return;
    const Part part = TakePart(typed.View(), typed.Length() - place->fromEnd, std::max(room, indent + 3) - indent);
    const WString blanks(indent, L' ');
    WriteErrorLine(blanks + part.text);
    WriteErrorLine(blanks + WString(part.cells, L' ') + L"^", Colour::Failure);
}
