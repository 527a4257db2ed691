#include "LineReader.h"

#include "ExpressionEvaluator.h"
#include "LineParts.h"
#include "Text/CharacterCase.h"
#include "Text/QuoteTracker.h"
#include "Text/ReferenceText.h"

#include <algorithm>
#include <utility>

namespace {
using View = std::wstring_view;
using Kind = Place::Kind;

bool IsNumber(View word)
{
    return !word.empty() && (IsDecimalDigit(word[0]) || word[0] == L'.');
}

bool IsOperatorWord(View word)
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedOperators(names);
    return std::ranges::any_of(names, [&](const WString& name) { return EqualsIgnoreCase(name.View(), word); });
}

bool BeginsCommand(View text)
{
    const WString beginning(text);
    return std::ranges::any_of(CommandRegistry::GetEntries(),
        [&](const CommandRegistry::Entry& entry) { return entry.name.StartsWith(beginning, true); });
}

/// Reads a line up to its end. Positions count from the start of the line.
class LineReader
{
public:
    explicit LineReader(View line) : line(line) {}

    void ReadLine();
    void ReadCommand(std::size_t start);
    Place TakePlace() { return std::move(place); }

private:
    const View line;
    Place place;

    std::size_t SkipBlanks(std::size_t position) const { return ::SkipBlanks(line, position); }
    std::size_t FindWordEnd(std::size_t position) const;
    std::size_t FindBehind(std::size_t start, const wchar_t* separator) const;

    void Expect(Kind kind, std::size_t start)
    {
        place.kind = kind;
        place.start = start;
    }
    void ReadArguments(std::size_t position, const CommandRecord& command);
    void ReadOption(std::size_t start, const CommandRecord& command);
    void ReadWord(std::size_t start, std::span<const ArgumentRecord> parts);
    void ReadParts(std::size_t start, std::span<const ArgumentRecord> parts, wchar_t listSeparator);
    void ReadPart(std::size_t start, ArgumentKind kind, wchar_t listSeparator);
    void ReadExpression(std::size_t start);
    bool TryReadReference(std::size_t& position);
};

/// Behind the word at this place; beyond the end of the line when it is still being written.
std::size_t LineReader::FindWordEnd(std::size_t position) const
{
    QuoteTracker quotes;
    for (; position < line.size(); ++position) {
        if (quotes.Next(line.substr(position)) == QuoteTracker::Role::Outside && IsWhiteSpace(line[position]))
            return position;
    }
    return View::npos;
}

/// Behind the first separator in front of which something stands; npos when there is none, or it is being written.
std::size_t LineReader::FindBehind(std::size_t start, const wchar_t* separator) const
{
    const bool isKeyword = IsNameCharacter(separator[0]);
    Span found;
    if (!TryFindSeparator(line, {start, line.size()}, separator, found) || (isKeyword && found.end == line.size()))
        return View::npos;
    return isKeyword || IsWhiteSpace(separator[0]) ? SkipBlanks(found.end) : found.end;
}

/// line: command | expression
void LineReader::ReadLine()
{
    const std::size_t start = SkipBlanks(0);
    const View name = line.substr(start, FindWordEnd(start) - start);
    const bool isCommand =
        FindWordEnd(start) == View::npos ? BeginsCommand(name) : CommandRegistry::FindOrNull(WString(name)) != nullptr;
    if (isCommand)
        ReadCommand(start);
    else
        ReadExpression(start);
}

/// command: name arguments
void LineReader::ReadCommand(std::size_t start)
{
    start = SkipBlanks(start);
    const std::size_t end = FindWordEnd(start);
    if (end == View::npos) {
        Expect(Kind::Command, start);
        return;
    }
    const CommandRegistry::Entry* const entry = CommandRegistry::FindOrNull(WString(line.substr(start, end - start)));
    if (entry && entry->record)
        ReadArguments(end, *entry->record);
}

/// Whether the name of a file may follow the option behind a blank: where its value may be empty.
bool TakesFileBehindBlank(View written, const CommandRecord& command)
{
    return std::ranges::any_of(command.options, [&](const OptionRecord& option) {
        return option.kind == OptionKind::File && option.least == 0 && EqualsIgnoreCase(written, option.name);
    });
}

/// arguments: { option } [ "--" ] ( parts | { word } )
void LineReader::ReadArguments(std::size_t position, const CommandRecord& command)
{
    wchar_t listSeparator = L';';
    bool areOptionsEnded = false;
    bool isFileNext = false;
    for (unsigned int words = 0;;) {
        position = SkipBlanks(position);
        if (std::exchange(isFileNext, false)) {
            const std::size_t end = FindWordEnd(position);
            if (end == View::npos)
                return ReadPart(position, ArgumentKind::File, listSeparator);
            position = SkipBlanks(end);
        }
        const std::size_t end = FindWordEnd(position);
        const View word = line.substr(position, end - position);
        const bool isOption = !areOptionsEnded && word.starts_with(L'-') &&
            (word.size() == 1 ? end == View::npos : ToLower(word[1]) >= L'a' && ToLower(word[1]) <= L'z');
        if (isOption && end == View::npos)
            return ReadOption(position, command);
        if (!areOptionsEnded && word == L"--" && end != View::npos) {
            areOptionsEnded = true;
        } else if (isOption) {
            if (word.size() == 3 && ToLower(word[1]) == L'l')
                listSeparator = word[2];
            isFileNext = TakesFileBehindBlank(word.substr(1), command);
        } else if (command.flags & CommandFlags::singleArgument) {
            return ReadParts(position, command.arguments, listSeparator);
        } else if (end == View::npos) {
            return ReadWord(position, words == 0 ? command.arguments : std::span<const ArgumentRecord>());
        } else {
            ++words;
            areOptionsEnded = areOptionsEnded || (command.flags & CommandFlags::optionsFirst);
        }
        position = end;
    }
}

void LineReader::ReadOption(std::size_t start, const CommandRecord& command)
{
    const View written = line.substr(start + 1);
    for (const OptionRecord& option : command.options) {
        const std::size_t length = View(option.name).size();
        if (option.kind == OptionKind::File && EqualsIgnoreCase(written.substr(0, length), option.name))
            return ReadPart(start + 1 + length, ArgumentKind::File, L';');
    }
    place.command = &command;
    Expect(Kind::Option, start);
}

/// A word of a command whose references are replaced by their values, in double quotes too.
void LineReader::ReadWord(std::size_t start, std::span<const ArgumentRecord> parts)
{
    for (std::size_t position = start; position < line.size(); ++position) {
        if (line[position] == L'%' && TryReadReference(position))
            return;
    }
    ReadParts(start, parts, L';');
}

/// parts: part { separator part }
void LineReader::ReadParts(std::size_t start, std::span<const ArgumentRecord> parts, wchar_t listSeparator)
{
    std::size_t index = 0;
    for (; index + 1 < parts.size(); ++index) {
        const std::size_t next = FindBehind(start, parts[index + 1].separator);
        if (next == View::npos)
            break;
        start = next;
    }
    if (index + 1 < parts.size() && IsNameCharacter(parts[index + 1].separator[0]))
        place.keywords.push_back(parts[index + 1].separator);
    ReadPart(start, parts.empty() ? ArgumentKind::Text : parts[index].kind, listSeparator);
}

void LineReader::ReadPart(std::size_t start, ArgumentKind kind, wchar_t listSeparator)
{
    switch (kind) {
    case ArgumentKind::Expression: return ReadExpression(start);
    case ArgumentKind::Command: return ReadCommand(start);
    case ArgumentKind::CommandList:
        return ReadCommand(SplitList(line, {start, line.size()}, listSeparator).back().start);
    default: break;
    }
    place.isQuoted = line.substr(start).starts_with(L'"');
    place.argument = kind;
    Expect(Kind::Argument, start + place.isQuoted);
}

/// expression: operands and operators, of which the last word or reference is what is being written
void LineReader::ReadExpression(std::size_t start)
{
    constexpr View punctuation = L"+-*/^&<>=(),";
    QuoteTracker quotes;
    bool isOperandEnded = false;
    bool isSpoilt = false; // by what cannot stand there
    std::size_t position = start;
    while (position < line.size()) {
        const wchar_t ch = line[position];
        const QuoteTracker::Role role = quotes.Next(line.substr(position));
        if (role != QuoteTracker::Role::Outside) {
            isOperandEnded = true;
            ++position;
        } else if (ch == L'%') {
            if (TryReadReference(position))
                return;
            isOperandEnded = true;
            ++position;
        } else if (IsNameCharacter(ch)) {
            const std::size_t wordStart = position;
            position = std::min(line.size(),
                static_cast<std::size_t>(std::find_if_not(line.begin() + static_cast<std::ptrdiff_t>(position),
                                             line.end(), IsNameCharacter) -
                    line.begin()));
            const View word = line.substr(wordStart, position - wordStart);
            if (position == line.size())
                return Expect(isSpoilt || IsNumber(word) ? Kind::Nothing
                        : isOperandEnded                 ? Kind::Operator
                                                         : Kind::Operand,
                    wordStart);
            isOperandEnded = !IsOperatorWord(word);
        } else {
            if (!IsWhiteSpace(ch))
                isOperandEnded = ch == L')';
            isSpoilt = isSpoilt || (!IsWhiteSpace(ch) && punctuation.find(ch) == View::npos);
            ++position;
        }
    }
    Expect(isSpoilt || quotes.IsInside() ? Kind::Nothing
            : isOperandEnded             ? Kind::Operator
                                         : Kind::Operand,
        line.size());
}

/// Reads the reference at the place of a "%". True when it is being written; otherwise the place becomes that of its
/// last character.
bool LineReader::TryReadReference(std::size_t& position)
{
    const ReferenceText::Reference reference = ReferenceText::Read(line.substr(position));
    const std::size_t end = position + reference.end;
    if (reference.fault == ReferenceText::Fault::None) {
        position = end - 1;
        return false;
    }
    if (reference.fault == ReferenceText::Fault::Closing) {
        place.reference = reference.kind;
        Expect(Kind::Reference, SkipBlanks(position + 3));
        return true;
    }
    if (line.size() - position > 2)
        return false;
    Expect(Kind::ReferenceKind, position);
    return true;
}
} // namespace

Place ReadPlace(std::wstring_view line)
{
    LineReader reader(line);
    reader.ReadLine();
    return reader.TakePlace();
}
