#include "LanguageServer/FormattedLines.h"

#include "Text/CharacterCase.h"

#include <algorithm>

namespace {
using View = std::wstring_view;

std::size_t CountOthers(View text)
{
    return static_cast<std::size_t>(std::ranges::count_if(text, [](wchar_t ch) { return !IsWhiteSpace(ch); }));
}

/// Takes off the front what has so many characters other than blanks, without blanks at its ends.
View Take(View& text, std::size_t count)
{
    const auto start = std::ranges::find_if_not(text, IsWhiteSpace);
    auto end = start;
    for (; count > 0; ++end)
        count -= !IsWhiteSpace(*end);
    const View taken(start, end);
    text = View(end, text.end());
    return taken;
}
} // namespace

std::vector<WString> SplitFormatted(const ScriptCommand& command, const WString& formatted)
{
    std::vector<WString> lines;
    View rest = formatted.View();
    if (CountOthers(rest) != CountOthers(command.text.View()))
        return lines;
    std::size_t start = 0;
    for (const std::size_t length : command.lengths) {
        const View line = command.text.View().substr(start, length);
        start += length;
        const auto first = std::ranges::find_if_not(line, IsWhiteSpace);
        const auto last = std::find_if_not(line.rbegin(), std::make_reverse_iterator(first), IsWhiteSpace).base();
        WString text(View(line.begin(), first));
        text.Append(Take(rest, CountOthers(line)));
        if (start < command.text.Length())
            text.Append(View(last, line.end()));
        lines.push_back(text);
    }
    lines.back().Append(rest);
    return lines;
}
