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

/// Takes a word off the front of the text: up to the next blank outside double quotes, without the quotes and without
/// the backslashes that keep a quote from being one.
WString TakeWord(Text& text)
{
    WString word;
    QuoteTracker quotes;
    for (; !text.empty(); text.remove_prefix(1)) {
        const QuoteTracker::Role role = quotes.Next(text);
        if (role == QuoteTracker::Role::Outside && IsWhiteSpace(text.front()))
            break;
        if (role == QuoteTracker::Role::Outside || role == QuoteTracker::Role::Inside)
            word += text.front();
    }
    if (quotes.IsInside())
        throw HostException(HostError::UnterminatedQuote);
    return word;
}
} // namespace

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
    bool optionsEnded = false;
    for (Text text = SkipBlanks(rest.View()); !text.empty(); text = SkipBlanks(text)) {
        if (!optionsEnded && StartsWithOptionEnd(text)) {
            optionsEnded = true;
            text.remove_prefix(2);
        } else if (!optionsEnded && StartsWithOption(text)) {
            text.remove_prefix(1);
            optionTexts.Add(TakeWord(text));
        } else if (flags & CommandFlags::singleArgument) {
            argumentTexts.Add(WString(text).Trim());
            break;
        } else {
            argumentTexts.Add(TakeWord(text));
            optionsEnded = optionsEnded || (flags & CommandFlags::optionsFirst);
        }
    }
    arguments = ArgumentList(std::move(argumentTexts));
    options = Options(optionTexts);
}
