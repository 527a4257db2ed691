#include "LineParts.h"

#include "Text/CharacterCase.h"
#include "Text/QuoteTracker.h"
#include "Text/WString.h"

#include <algorithm>

using View = std::wstring_view;

std::size_t SkipBlanks(View line, std::size_t position)
{
    while (position < line.size() && IsWhiteSpace(line[position]))
        ++position;
    return position;
}

Span Trim(View line, Span part)
{
    while (part.start < part.end && IsWhiteSpace(line[part.start]))
        ++part.start;
    while (part.start < part.end && IsWhiteSpace(line[part.end - 1]))
        --part.end;
    return part;
}

bool TryFindSeparator(View line, Span part, const wchar_t* separator, Span& found)
{
    const View text = part.In(line);
    if (IsNameCharacter(separator[0])) {
        WString before;
        WString after;
        if (!WString(text).TrySplitAtKeyword(separator, before, after))
            return false;
        found.start = SkipBlanks(line, SkipBlanks(line, part.start) + before.Length());
        found.end = found.start + View(separator).size();
        return true;
    }
    const auto place =
        IsWhiteSpace(separator[0]) ? std::ranges::find_if(text, IsWhiteSpace) : std::ranges::find(text, separator[0]);
    if (place == text.end())
        return false;
    found.start = part.start + static_cast<std::size_t>(place - text.begin());
    found.end = found.start + 1;
    return true;
}

std::vector<Span> SplitList(View line, Span list, wchar_t separator)
{
    std::vector<Span> pieces = {{list.start, list.end}};
    QuoteTracker quotes;
    for (std::size_t position = list.start; position < list.end; ++position) {
        if (quotes.Next(line.substr(position, list.end - position)) != QuoteTracker::Role::Outside ||
            line[position] != separator)
            continue;
        pieces.back().end = position;
        pieces.push_back({position + 1, list.end});
    }
    return pieces;
}
