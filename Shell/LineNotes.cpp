#include "LineNotes.h"

#include "Commands/CommandFlags.h"
#include "Commands/CommandLine.h"
#include "Text/CharacterCase.h"
#include "Text/ExitCode.h"
#include "Text/QuoteTracker.h"
#include "Text/SimilarName.h"

#include <algorithm>

namespace {
using View = std::wstring_view;

/// A command list as While splits it.
struct CommandList
{
    WString separator = L";";
    WStringArray commands;
};

/// Where the text has " #" or " // " outside double quotes, from that mark on; else empty. A "#" without a blank
/// behind it may well be meant, where nothing has failed.
View FindComment(View text, bool hasFailed)
{
    const View mark = hasFailed ? L"#" : L"# ";
    QuoteTracker quotes;
    bool isBehindBlank = false;
    for (; !text.empty(); text.remove_prefix(1)) {
        const bool isOutside = quotes.Next(text) == QuoteTracker::Role::Outside;
        if (isOutside && isBehindBlank && (text.starts_with(mark) || text.starts_with(L"// ")))
            return text;
        isBehindBlank = isOutside && IsWhiteSpace(text.front());
    }
    return {};
}

/// False for another command than While.
bool TrySplitLoop(const WString& line, CommandList& list)
{
    WString name;
    WString rest;
    CommandLine::SplitName(line, name, rest);
    if (!EqualsIgnoreCase(name.View(), L"While"))
        return false;
    ArgumentList arguments;
    Options options;
    CommandLine::Parse(rest, CommandFlags::restAsItStands, arguments, options);
    options.TryGetString(L"l", 0, list.separator, 1, 1);
    WString condition;
    WString commands;
    if (arguments.Count() == 0 || !arguments.At(0).TrySplitAtKeyword(L"DO", condition, commands))
        return false;
    commands.GetWStringArray(list.commands, 1, 100, 0, 1, 4096, list.separator);
    return true;
}

/// Whether one command begins with If, and the ELSE of it has come into another.
bool IsConditionalTornApart(const WStringArray& commands)
{
    bool isWithinIf = false;
    for (const WString& command : commands) {
        WString before;
        WString after;
        const bool hasElse = command.TrySplitAtKeyword(L"ELSE", before, after);
        const bool isIf = command.TrySplitAtKeyword(L"THEN", before, after) && command.StartsWith(L"If ", true);
        if (isWithinIf && hasElse && !isIf)
            return true;
        isWithinIf = isIf ? !hasElse : isWithinIf;
    }
    return false;
}

bool IsLoopThatTearsConditional(const WString& line, WString& separator)
try {
    CommandList list;
    const bool isTorn = TrySplitLoop(line, list) && IsConditionalTornApart(list.commands);
    separator = list.separator;
    return isTorn;
} catch (const ExitCode&) { // which the command has reported
    return false;
}

/// A word of an If that is nearly the ELSE that it lacks, with something behind it; else empty.
WString FindNearlyElse(const WString& line)
try {
    WString name;
    WString rest;
    WString before;
    WString commands;
    CommandLine::SplitName(line, name, rest);
    if (!EqualsIgnoreCase(name.View(), L"If") || !rest.TrySplitAtKeyword(L"THEN", before, commands) ||
        commands.TrySplitAtKeyword(L"ELSE", before, rest))
        return WString();
    WStringArray words;
    commands.GetWStringArray(words, 1, 1000, 0, 1, 4096, L" \t");
    for (std::size_t i = 0; i + 1 < words.Count(); ++i) {
        SimilarName similar(words[i]);
        similar.Offer(L"ELSE");
        if (!similar.Get().IsEmpty())
            return words[i];
    }
    return WString();
} catch (const ExitCode&) { // of so many words that it is another matter
    return WString();
}

void AddOnce(const WString& note, WStringArray& notes)
{
    if (std::ranges::find(notes, note) == notes.end())
        notes.Add(note);
}
} // namespace

void AddLineNotes(const WString& line, bool hasFailed, WStringArray& notes)
{
    if (const View comment = FindComment(line.View(), hasFailed); !comment.empty())
        AddOnce(L"\"" + WString(comment).Trim() +
                L"\" was read as part of the command; a comment stands on a line of its own, behind #",
            notes);
    if (const WString word = FindNearlyElse(line); !word.IsEmpty())
        AddOnce(L"\"" + word + L"\" was read as part of the command; did you mean ELSE?", notes);
    if (WString separator; IsLoopThatTearsConditional(line, separator))
        AddOnce(L"While splits its commands at every \"" + separator +
                L"\", those of If too; give While another separator: While -l| ... Do If ... Then a; b Else c | d",
            notes);
}
