#include "LinePieces.h"

#include "CommandText.h"
#include "Text/CharacterCase.h"

#include <algorithm>

namespace {
using View = std::wstring_view;

/// Separators that nothing else consists of; with another one a list is left as it stands.
constexpr View plainSeparators_lc = L";,|/!&:+#~";

class LinePieces
{
public:
    explicit LinePieces(View line) : line(line) {}

    void AddCommand(const CommandText& command);
    std::vector<LinePiece> Take()
    {
        std::ranges::sort(pieces, {}, [](const LinePiece& piece) { return piece.place.start; });
        return std::move(pieces);
    }

private:
    using Kind = LinePiece::Kind;

    const View line;
    std::vector<LinePiece> pieces;

    void Add(Kind kind, Span place, const CommandText& command, ArgumentKind argument = ArgumentKind::Text)
    {
        if (!place.IsEmpty())
            pieces.push_back({kind, place, command.entry, argument});
    }
    void AddParts(const CommandText& command);
    void AddPart(const CommandText& command, const PartText& part, Span place);
};

/// From where on nothing is known of the words of a command: it takes any, or references are replaced first, and what
/// their values make of the line is not known.
std::size_t FindUnknown(const CommandText& command)
{
    std::size_t start = command.place.end;
    for (const OptionText& option : command.options) {
        if (command.DependsOnValue(option.place))
            start = std::min(start, option.place.start);
    }
    for (const Span& word : command.words) {
        if (command.DependsOnValue(word) || command.entry->record->arguments.empty())
            start = std::min(start, word.start);
    }
    return start;
}

void LinePieces::AddCommand(const CommandText& command)
{
    if (!command.entry)
        return Add(Kind::Argument, command.place, command);
    Add(Kind::Command, command.name, command);
    if (!command.entry->record)
        return Add(Kind::Argument, Trim(line, {command.name.end, command.place.end}), command);
    const Span unknown = {FindUnknown(command), command.place.end};
    Add(Kind::Argument, unknown, command);
    const auto isKnown = [&](Span place) { return place.start < unknown.start; };
    if (isKnown(command.file))
        Add(Kind::Argument, command.file, command, ArgumentKind::File);
    if (isKnown(command.optionsEnd))
        Add(Kind::Option, command.optionsEnd, command);
    for (const OptionText& option : command.options) {
        if (isKnown(option.place))
            Add(Kind::Option, option.place, command);
    }
    for (const Span& word : command.words) {
        const bool hasParts = &word == &command.words.front() && !command.parts.empty();
        if (isKnown(word) && hasParts)
            AddParts(command);
        else if (isKnown(word))
            Add(Kind::Argument, word, command);
    }
}

void LinePieces::AddParts(const CommandText& command)
{
    for (const PartText& part : command.parts) {
        Span place = part.place;
        if (&part == &command.parts.front())
            place.start = command.words[0].start; // at a quote, maybe
        else if (IsNameCharacter(part.record->separator[0]))
            Add(Kind::Keyword, Trim(line, {(&part - 1)->place.end, place.start}), command);
        if (&part == &command.parts.back())
            place.end = command.words[0].end;
        AddPart(command, part, place);
    }
}

void LinePieces::AddPart(const CommandText& command, const PartText& part, Span place)
{
    const bool hasCommands = !part.commands.empty() || !part.delimiters.empty();
    if (!hasCommands || plainSeparators_lc.find(command.delimiter) == View::npos)
        return Add(Kind::Argument, place, command, part.record->kind);
    for (const CommandText& inner : part.commands)
        AddCommand(inner);
    for (const Span& delimiter : part.delimiters)
        Add(Kind::Separator, delimiter, command);
}
} // namespace

std::vector<LinePiece> ReadLinePieces(View line)
{
    const CommandText command = ReadCommandText(line, {0, line.size()});
    if (!command.entry && !command.place.IsEmpty())
        return {{LinePiece::Kind::Argument, command.place, nullptr, ArgumentKind::Expression}};
    LinePieces pieces(line);
    pieces.AddCommand(command);
    return pieces.Take();
}
