#include "Commands/CommandLine.h"

#include "Commands/CommandFlags.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"
#include "Text/QuoteTracker.h"

#include <algorithm>

namespace {
using Text = std::wstring_view;

Text SkipBlanks(Text text)
{
    return {std::ranges::find_if_not(text, IsWhiteSpace), text.end()};
}

bool StartsWithOption(Text text)
{
    const auto isLetter = [](wchar_t ch) { return ch >= L'a' && ch <= L'z'; };
    return text.size() >= 2 && text[0] == L'-' && isLetter(ToLower(text[1]));
}

bool StartsWithOptionEnd(Text text)
{
    return text.starts_with(L"--") && (text.size() == 2 || IsWhiteSpace(text[2]));
}

/// The length of the word at the start: up to the next blank outside double quotes.
std::size_t MeasureWord(Text text, bool& isClosed)
{
    QuoteTracker quotes;
    std::size_t length = 0;
    for (; length < text.size(); ++length) {
        if (quotes.Next(text.substr(length)) == QuoteTracker::Role::Outside && IsWhiteSpace(text[length]))
            break;
    }
    isClosed = !quotes.IsInside();
    return length;
}
} // namespace

bool CommandLine::PieceReader::TryRead(Piece& piece)
{
    const Text rest = SkipBlanks(text.substr(position));
    if (rest.empty())
        return false;
    piece.start = text.size() - rest.size();
    piece.isClosed = true;
    if (!haveOptionsEnded && StartsWithOptionEnd(rest)) {
        haveOptionsEnded = true;
        piece.kind = Piece::Kind::OptionsEnd;
        piece.end = piece.start + 2;
    } else {
        const bool isOption = !haveOptionsEnded && StartsWithOption(rest);
        piece.kind = isOption ? Piece::Kind::Option : Piece::Kind::Argument;
        haveOptionsEnded = haveOptionsEnded || (!isOption && (flags & CommandFlags::optionsFirst));
        if (isOption || !(flags & CommandFlags::singleArgument))
            piece.end = piece.start + MeasureWord(rest, piece.isClosed);
        else
            piece.end = piece.start + WString(rest).Trim().Length();
    }
    position = piece.end;
    if (piece.kind == Piece::Kind::Argument && (flags & CommandFlags::singleArgument))
        position = text.size();
    return true;
}

WString CommandLine::Unquote(std::wstring_view word)
{
    WString text;
    QuoteTracker quotes;
    for (; !word.empty(); word.remove_prefix(1)) {
        const QuoteTracker::Role role = quotes.Next(word);
        if (role == QuoteTracker::Role::Outside || role == QuoteTracker::Role::Inside)
            text += word.front();
    }
    return text;
}

void CommandLine::SplitName(const WString& line, WString& name, WString& rest)
{
    const Text text = SkipBlanks(line.View());
    const auto end = std::ranges::find_if(text, IsWhiteSpace);
    name = WString(Text(text.begin(), end));
    rest = WString(Text(end, text.end())).Trim();
}

void CommandLine::Parse(const WString& rest, unsigned int flags, ArgumentList& arguments, Options& options)
{
    WStringArray argumentTexts;
    WStringArray optionTexts;
    const Text text = rest.View();
    PieceReader reader(text, flags);
    for (Piece piece; reader.TryRead(piece);) {
        const Text word = text.substr(piece.start, piece.end - piece.start);
        if (!piece.isClosed)
            throw HostException(HostError::UnterminatedQuote);
        if (piece.kind == Piece::Kind::Option)
            optionTexts.Add(Unquote(word.substr(1)));
        else if (piece.kind == Piece::Kind::Argument)
            argumentTexts.Add(flags & CommandFlags::singleArgument ? WString(word) : Unquote(word));
    }
    arguments = ArgumentList(std::move(argumentTexts));
    options = Options(optionTexts);
}
