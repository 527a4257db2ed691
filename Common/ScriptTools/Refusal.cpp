#include "Refusal.h"

#include "Commands/CommandLine.h"
#include "Commands/Reference.h"
#include "Text/CharacterCase.h"
#include "Text/ExitCode.h"
#include "Text/HostError.h"
#include "Text/NumberText.h"
#include "Text/QuoteTracker.h"
#include "Text/ReferenceText.h"
#include "Text/SimilarName.h"

#include <algorithm>

namespace {
using View = std::wstring_view;

/// The shell's own commands take the record header that If and While leave in a variable.
constexpr TextOption recordHeader_lc(L"r", 3, 1, 32, L"");

constexpr std::size_t maxCommands = 100; // of a list
constexpr std::size_t maxCommandLength = 4096;
constexpr unsigned int maxPatterns = 100;
constexpr unsigned int maxPatternLength = 30;
constexpr unsigned int nameLimit = 60; // of what a report shows

bool ServesAsPatterns(const WString& text, unsigned int exitNumber)
{
    WStringArray patterns;
    text.GetWStringArray(patterns, 1, maxPatterns, exitNumber, 1, maxPatternLength, L";,");
    return true;
}

/// Whether the command would take the option with the value that it has.
bool Serves(const OptionRecord& row, const WString& text)
try {
    WStringArray texts;
    texts.Add(text);
    Options options(texts);
    int whole = 0;
    double number = 0;
    WString value;
    switch (row.kind) {
    case OptionKind::Flag: return options.TryGetFlag(row.name, row.exitNumber);
    case OptionKind::WholeNumber:
        return options.TryGetInt(
            row.name, row.exitNumber, whole, static_cast<int>(row.least), static_cast<int>(row.greatest));
    case OptionKind::Number: return options.TryGetDouble(row.name, row.exitNumber, number, row.least, row.greatest);
    default: break;
    }
    options.TryGetString(
        row.name, row.exitNumber, value, static_cast<unsigned int>(row.least), static_cast<unsigned int>(row.greatest));
    return row.kind != OptionKind::ExitCodePatterns || ServesAsPatterns(value, row.exitNumber);
} catch (const ExitCode&) {
    return false;
}

class RefusalSearch
{
public:
    RefusalSearch(View line, const CommandText& command, const KnownNames& known)
        : line(line), command(command), record(*command.entry->record), known(known)
    {}

    /// In the order of a run.
    bool TryFind()
    {
        const bool isStatement = std::ranges::any_of(
            record.arguments, [](const ArgumentRecord& part) { return part.kind == ArgumentKind::CommandList; });
        return RefusesReferences() || RefusesQuote() || (isStatement && RefusesCount()) || RefusesValues() ||
            (isStatement && (RefusesParts() || RefusesList())) || (!isStatement && RefusesCount()) || RefusesName() ||
            RefusesOptions() || RefusesParts() || RefusesNumber() || RefusesCombination();
    }
    LineFinding Take() { return std::move(finding); }
    /// Whether it may have been refused before for something that a value decides.
    bool IsUnsure() const { return isCountUnsure; }

private:
    const View line;
    const CommandText& command;
    const CommandRecord& record;
    const KnownNames& known;
    LineFinding finding;
    bool isCountUnsure = false;

    bool Refuse(const wchar_t* code, Span place, const WString& message, const WString& suggestion = WString())
    {
        finding = {true, code, place, message, suggestion};
        return true;
    }
    bool RefusesReferences();
    bool RefusesQuote();
    bool RefusesCount();
    bool RefusesValues();
    bool RefusesValue(const OptionRecord& row);
    bool RefusesParts();
    bool RefusesList();
    bool RefusesName();
    bool RefusesOptions();
    bool RefusesNumber();
    bool RefusesCombination();
    bool IsRecordHeader(const OptionText& option) const
    {
        return command.entry->file.empty() && !option.row && option.text.StartsWith(recordHeader_lc.name, true);
    }
    WString FindSimilarOption(const OptionText& option) const;
};

/// A reference whose form is wrong, whatever there is.
bool RefusalSearch::RefusesReferences()
{
    for (const Span& place : command.references) {
        const ReferenceText::Reference read = ReferenceText::Read(place.In(line));
        const bool isBad = read.fault != ReferenceText::Fault::None ||
            (read.kind == L'C' && ReferenceText::ReadSettingName(read.name).fault != ReferenceText::Fault::None);
        if (isBad)
            return Refuse(Findings::MalformedReference, place,
                HostException(HostError::UnknownReference, WString(place.In(line))).GetMessage());
    }
    return false;
}

bool RefusalSearch::RefusesQuote()
{
    if (command.isClosed)
        return false;
    QuoteTracker quotes;
    std::size_t opening = command.name.end;
    for (std::size_t position = command.name.end; position < command.place.end; ++position) {
        const bool isQuote =
            quotes.Next(line.substr(position, command.place.end - position)) == QuoteTracker::Role::Quote;
        if (isQuote && quotes.IsInside())
            opening = position;
    }
    return Refuse(
        Findings::MissingQuote, {opening, command.place.end}, HostException(HostError::UnterminatedQuote).GetMessage());
}

bool RefusalSearch::RefusesCount()
{
    const std::size_t count = command.words.size();
    const ArgumentCount& wanted = record.argumentCount;
    const bool isHelp = command.HasOption(L"help") || command.HasOption(L"h"); // Calc describes its functions
    const bool isTooFew = isHelp ? count > 0 : count < wanted.least;
    if (!isTooFew && count <= wanted.most)
        return false;
    isCountUnsure = !command.references.empty(); // whose values may be several words, or none
    if (isCountUnsure)
        return false;
    const Span place = count > wanted.most ? Span{command.words[wanted.most].start, command.place.end} : command.name;
    return Refuse(Findings::WrongArguments, place, L"Wrong number of arguments");
}

bool RefusalSearch::RefusesValues()
{
    if (command.entry->file.empty() && RefusesValue(recordHeader_lc))
        return true;
    return std::ranges::any_of(record.options, [this](const OptionRecord& row) { return RefusesValue(row); });
}

/// Of an option given twice the last counts.
bool RefusalSearch::RefusesValue(const OptionRecord& row)
{
    const OptionText* given = nullptr;
    for (const OptionText& option : command.options) {
        if (option.row == &row || (&row == &recordHeader_lc && IsRecordHeader(option)))
            given = &option;
    }
    if (!given || !given->isJudged || Serves(row, given->text))
        return false;
    return Refuse(
        Findings::BadOptionValue, given->place, L"Bad value of option -" + given->text, FindSimilarOption(*given));
}

bool RefusalSearch::RefusesParts()
{
    if (command.missing && !IsNameCharacter(command.missing->separator[0]))
        return Refuse(Findings::MissingKeyword, command.place, L"There is no command behind the exit code");
    if (command.missing) {
        const wchar_t* const keyword = command.missing->separator;
        const Span statement = command.parts.back().place;
        const Span nearly = FindNearly(line, statement, keyword, known);
        return Refuse(Findings::MissingKeyword, nearly.IsEmpty() ? statement : nearly,
            keyword + WString(L" is missing"), nearly.IsEmpty() ? L"" : keyword);
    }
    if (command.emptyBehind.IsEmpty())
        return false;
    return Refuse(Findings::MissingList, command.emptyBehind,
        L"No command after " + WString(command.emptyBehind.In(line)).ToUpperCase());
}

/// A list that is split before anything is run, as it is where there is no other to choose.
bool RefusalSearch::RefusesList()
{
    if (record.arguments.size() != 2 || record.arguments[1].kind != ArgumentKind::CommandList ||
        command.parts.size() != 2)
        return false;
    const PartText& list = command.parts.back();
    const bool hasLong = std::ranges::any_of(
        list.commands, [](const CommandText& inner) { return inner.place.end - inner.place.start > maxCommandLength; });
    return (hasLong || list.commands.size() > maxCommands) &&
        Refuse(Findings::TooLong, list.place, L"More than 100 commands, or one of more than 4096 characters");
}

/// What Set takes for a name; patterns stand where nothing is assigned.
bool RefusalSearch::RefusesName()
{
    if (command.parts.empty() || command.parts[0].record->kind != ArgumentKind::Variable)
        return false;
    const Span place = command.parts[0].place;
    const View name = place.In(line);
    const bool isPattern = command.parts.size() == 1;
    const auto isValid = [&](wchar_t ch) { return IsNameCharacter(ch) || (isPattern && (ch == L'*' || ch == L'?')); };
    if (name.find_first_of(L" \t") != View::npos)
        return Refuse(Findings::BadName, place, L"Blank in variable name: " + WString(name));
    return !std::ranges::all_of(name, isValid) &&
        Refuse(Findings::BadName, place, L"Invalid character in variable name: " + WString(name));
}

bool RefusalSearch::RefusesOptions()
{
    const auto unknown = std::ranges::find_if(command.options,
        [this](const OptionText& option) { return !option.row && option.isJudged && !IsRecordHeader(option); });
    if (unknown == command.options.end())
        return false;
    return Refuse(Findings::UnknownOption, unknown->place,
        HostException(HostError::UnknownOption, L"-" + unknown->text).GetMessage(), FindSimilarOption(*unknown));
}

bool RefusalSearch::RefusesNumber()
{
    if (command.parts.empty() || command.DependsOnValue(command.words[0]))
        return false;
    const ArgumentRecord& number = *command.parts[0].record;
    const WString text = CommandLine::Unquote(command.words[0].In(line));
    double value = 0;
    int whole = 0;
    const bool isBad =
        (number.kind == ArgumentKind::Number && !text.TryParseDouble(value, number.least, number.greatest)) ||
        (number.kind == ArgumentKind::WholeNumber &&
            !TryParseWhole(text.View(), whole, static_cast<int>(number.least), static_cast<int>(number.greatest)));
    return isBad && Refuse(Findings::BadNumber, command.words[0], text + L" is no " + number.noun);
}

/// What Set refuses.
bool RefusalSearch::RefusesCombination()
{
    return command.parts.size() == 2 && command.parts[0].record->kind == ArgumentKind::Variable &&
        !command.parts[1].place.IsEmpty() && command.HasOption(L"z") &&
        Refuse(Findings::DeletedAndAssigned, command.place, L"A variable cannot be deleted and assigned at once");
}

WString RefusalSearch::FindSimilarOption(const OptionText& option) const
{
    SimilarName similar(option.text);
    for (const OptionRecord& row : record.options)
        similar.Offer(row.name);
    return similar.Get().IsEmpty() ? WString() : L"-" + similar.Get();
}

LineFinding MakeUnknownCommand(View line, Span place)
{
    WString name(place.In(line));
    SimilarName similar(name);
    for (const CommandRegistry::Entry& entry : CommandRegistry::GetEntries())
        similar.Offer(entry.name);
    if (name.Length() > nameLimit)
        name = name.Left(nameLimit) + L"...";
    return {true, Findings::UnknownCommand, place, HostException(HostError::UnknownCommand, name).GetMessage(),
        similar.Get()};
}

/// Whether all references but one that is wrong in itself stand for something, without any script having run.
bool AreReferencesSure(View line, const CommandText& command, Span upTo)
{
    static const Environment none;
    return std::ranges::all_of(command.references, [&](const Span& place) {
        return place.start >= upTo.start || Reference::Exists(WString(place.In(line)), none);
    });
}
} // namespace

Span FindNearly(View line, Span part, const wchar_t* wanted, const KnownNames& known)
{
    QuoteTracker quotes;
    for (std::size_t position = part.start; position < part.end;) {
        const bool isOutside = quotes.Next(line.substr(position, part.end - position)) == QuoteTracker::Role::Outside;
        Span word = {position, position + 1};
        while (isOutside && IsNameCharacter(line[position]) && word.end < part.end && IsNameCharacter(line[word.end]))
            ++word.end;
        SimilarName similar(isOutside ? WString(word.In(line)) : WString());
        similar.Offer(wanted);
        if (isOutside && !similar.Get().IsEmpty() && !EqualsIgnoreCase(word.In(line), wanted) &&
            !known.IsMade(L'E', WString(word.In(line))))
            return word;
        position = word.end;
    }
    return {};
}

std::optional<LineFinding> FindRefusal(View line, const CommandText& command, const KnownNames& known)
{
    if (!command.entry)
        return MakeUnknownCommand(line, command.name);
    if (!command.entry->record)
        return std::nullopt;
    RefusalSearch refusal(line, command, known);
    if (!refusal.TryFind())
        return std::nullopt;
    LineFinding finding = refusal.Take();
    const bool isReference = View(finding.code) == Findings::MalformedReference;
    finding.isError = !refusal.IsUnsure() &&
        AreReferencesSure(line, command, isReference ? finding.place : Span{command.place.end, 0});
    return finding;
}
