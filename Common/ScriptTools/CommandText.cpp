#include "CommandText.h"

#include "Commands/CommandLine.h"
#include "Commands/CommandRunner.h"
#include "Text/CharacterCase.h"
#include "Text/ReferenceText.h"

#include <algorithm>
#include <string>

namespace {
using View = std::wstring_view;

class Reader
{
public:
    explicit Reader(View line) : line(line) {}

    CommandText Read(Span part, int depth) const;

private:
    const View line;

    std::wstring ReadReferences(Span rest, CommandText& command) const;
    void ReadPieces(View text, std::size_t start, CommandText& command) const;
    void TakeFile(CommandText& command) const;
    void ReadParts(Span argument, int depth, CommandText& command) const;
    void ReadCommands(PartText& part, int depth, wchar_t delimiter) const;
};

/// command: name { option | word } parts
CommandText Reader::Read(Span part, int depth) const
{
    CommandText command;
    command.place = Trim(line, part);
    const View text = command.place.In(line);
    const auto nameEnd = std::ranges::find_if(text, IsWhiteSpace);
    command.name = {command.place.start, command.place.start + static_cast<std::size_t>(nameEnd - text.begin())};
    command.entry = CommandRegistry::FindOrNull(WString(command.name.In(line)));
    if (!command.entry || !command.entry->record)
        return command;
    const CommandRecord& record = *command.entry->record;
    const Span rest = {SkipBlanks(line, command.name.end), command.place.end};
    if (rest.IsEmpty())
        return command;
    if (record.flags & CommandFlags::noSubstitution)
        ReadPieces(rest.In(line), rest.start, command);
    else
        ReadPieces(ReadReferences(rest, command), rest.start, command);
    if (!command.words.empty() && command.isClosed)
        TakeFile(command);
    if (!command.words.empty() && command.isClosed)
        ReadParts(command.words[0], depth, command);
    return command;
}

/// Notes the references, and yields the text with a letter for each of their characters: whatever stands for them, the
/// blanks and quotes in them divide nothing.
std::wstring Reader::ReadReferences(Span rest, CommandText& command) const
{
    std::wstring text(rest.In(line));
    for (std::size_t position = 0; position < text.size();) {
        const ReferenceText::Reference found = ReferenceText::Find(View(text).substr(position));
        const Span place = {position + found.start, position + found.end};
        if (place.start >= text.size())
            break;
        command.references.push_back({rest.start + place.start, rest.start + place.end});
        command.isClosed = command.isClosed && found.fault == ReferenceText::Fault::None;
        std::fill(text.begin() + static_cast<std::ptrdiff_t>(place.start),
            text.begin() + static_cast<std::ptrdiff_t>(place.end), L'x');
        position = place.end;
    }
    return text;
}

/// `text` stands in the line from `start` on.
void Reader::ReadPieces(View text, std::size_t start, CommandText& command) const
{
    using CommandLine::Piece;
    CommandLine::PieceReader reader(text, command.entry->record->flags);
    for (Piece piece; reader.TryRead(piece);) {
        const Span place = {start + piece.start, start + piece.end};
        command.isClosed = command.isClosed && piece.isClosed;
        if (piece.kind == Piece::Kind::Argument)
            command.words.push_back(place);
        if (piece.kind == Piece::Kind::OptionsEnd)
            command.optionsEnd = place;
        if (piece.kind != Piece::Kind::Option)
            continue;
        OptionText option = {place, CommandLine::Unquote(place.In(line).substr(1))};
        option.isJudged = !command.DependsOnValue(place);
        for (const OptionRecord& row : command.entry->record->options) {
            const bool isLonger = !option.row || View(row.name).size() > View(option.row->name).size();
            if (isLonger && option.text.StartsWith(row.name, true))
                option.row = &row;
        }
        if (option.row && EqualsIgnoreCase(option.row->name, L"l"))
            command.delimiter = option.text.Length() == 2 ? option.text[1] : L'\0';
        command.options.push_back(std::move(option));
    }
}

/// Takes the name of a file, and the options behind it, off the front of an argument: "Watch -o readings.csv -c3 1+2".
void Reader::TakeFile(CommandText& command) const
{
    const bool isBehind = std::ranges::any_of(command.options, [](const OptionText& option) {
        return option.row && option.row->kind == OptionKind::File && option.row->least == 0 &&
            option.text.Length() == View(option.row->name).size();
    });
    const Span argument = command.words[0];
    CommandLine::PieceReader reader(argument.In(line), 0);
    CommandLine::Piece file;
    if (!isBehind || !(command.entry->record->flags & CommandFlags::singleArgument) || !reader.TryRead(file))
        return;
    command.file = {argument.start, argument.start + file.end};
    const Span rest = Trim(line, {command.file.end, argument.end});
    command.words = {rest};
    if (rest.IsEmpty())
        return;
    command.words.clear();
    ReadPieces(rest.In(line), rest.start, command);
}

/// parts: part { separator part }
void Reader::ReadParts(Span argument, int depth, CommandText& command) const
{
    const CommandRecord& record = *command.entry->record;
    const bool isSingle = (record.flags & CommandFlags::singleArgument) != 0;
    if (!isSingle && line[argument.start] == L'"' && line.find(L'"', argument.start + 1) == argument.end - 1)
        argument = {argument.start + 1, argument.end - 1};
    Span formerSeparator;
    for (std::size_t index = 0; index < record.arguments.size(); ++index) {
        PartText part;
        part.record = &record.arguments[index];
        const ArgumentRecord* const next = index + 1 < record.arguments.size() ? part.record + 1 : nullptr;
        Span separator;
        const bool hasNext = next && TryFindSeparator(line, argument, next->separator, separator);
        part.place = Trim(line, {argument.start, hasNext ? separator.start : argument.end});
        ReadCommands(part, depth, command.delimiter);
        const bool isMissing = part.place.IsEmpty() && !part.record->mayBeEmpty;
        if (index > 0 && isMissing && command.emptyBehind.IsEmpty())
            command.emptyBehind = formerSeparator;
        command.parts.push_back(std::move(part));
        if (!hasNext) {
            command.missing = next && !next->isOptional ? next : nullptr;
            return;
        }
        argument.start = separator.end;
        formerSeparator = separator;
    }
}

void Reader::ReadCommands(PartText& part, int depth, wchar_t delimiter) const
{
    const bool isList = part.record->kind == ArgumentKind::CommandList;
    if ((!isList && part.record->kind != ArgumentKind::Command) || (isList && delimiter == 0) ||
        depth == CommandRunner::maxNesting)
        return;
    const std::vector<Span> pieces = isList ? SplitList(line, part.place, delimiter) : std::vector<Span>{part.place};
    for (const Span& piece : pieces) {
        if (piece.start != part.place.start)
            part.delimiters.push_back({piece.start - 1, piece.start});
        if (!Trim(line, piece).IsEmpty())
            part.commands.push_back(Read(piece, depth + 1));
    }
}
} // namespace

bool CommandText::DependsOnValue(Span part) const
{
    const auto first = std::ranges::upper_bound(references, part.start, {}, &Span::end); // they are in their order
    return first != references.end() && first->start < part.end;
}

bool CommandText::HasOption(View optionName) const
{
    return std::ranges::any_of(options,
        [&](const OptionText& option) { return option.row && EqualsIgnoreCase(option.row->name, optionName); });
}

CommandText ReadCommandText(View line, Span part)
{
    return Reader(line).Read(part, 1);
}
