#include "FindingText.h"

#include "Commands/ScriptText.h"
#include "Text/Cells.h"
#include "Text/JsonText.h"

#include <algorithm>

namespace {
using View = std::wstring_view;

constexpr const wchar_t* errorColour = L"\x1b[31m";
constexpr const wchar_t* warningColour = L"\x1b[33m";
constexpr const wchar_t* placeColour = L"\x1b[2m";

constexpr std::size_t widest = 160;      // characters of a line that are shown
constexpr std::size_t mostInFront = 100; // of them in front of the place

const wchar_t* GetSeverity(const Finding& finding)
{
    return finding.isError ? L"error" : L"warning";
}

/// Blanks for control characters, so that each takes one cell.
WString WithoutControls(View text)
{
    WString line;
    for (const wchar_t ch : text)
        line += ch < L' ' || (ch >= 0x7F && ch < 0xA0) ? L' ' : ch;
    return line;
}
} // namespace

FindingText::FindingText(const std::string& script, const WString& name, bool isColoured)
    : name(WithoutControls(name.View())), isColoured(isColoured)
{
    TextLines reader(script);
    for (std::string line; reader.TryReadLine(line);)
        lines.push_back(line);
}

WString FindingText::Paint(const WString& text, const wchar_t* colour) const
{
    return isColoured ? colour + text + L"\x1b[0m" : text;
}

/// One line may have many findings.
const WString& FindingText::GetLine(std::size_t number)
{
    if (number != shownNumber)
        shown = WithoutControls(WString::FromUtf8(lines[number]).View());
    shownNumber = number;
    return shown;
}

void FindingText::Write(const Finding& finding, Pipe& output)
{
    const TextRange& place = finding.place;
    const wchar_t* const colour = finding.isError ? errorColour : warningColour;
    output.DoWriteLine(Paint(WString::Format(L"%s:%u:%u: ", name, place.line + 1, place.start + 1), placeColour) +
        Paint(GetSeverity(finding) + WString(L":"), colour) + L" " + WithoutControls(finding.message.View()) + L" [" +
        finding.code + L"]");

    const WString& whole = GetLine(place.line);
    const std::size_t cut = place.start > mostInFront && whole.Length() > widest ? place.start - mostInFront : 0;
    const View line = whole.View().substr(cut, widest);
    const std::size_t start = std::min(place.start - cut, line.size());
    const std::size_t end = std::clamp(place.end - cut, start, line.size());
    const std::size_t width = std::max<std::size_t>(CountCells(line.substr(start, end - start)), 1);
    output.DoWriteLine(L"  " + WString(line));
    output.DoWriteLine(
        L"  " + WString(CountCells(line.substr(0, start)), L' ') + Paint(L"^" + WString(width - 1, L'~'), colour));
    if (!finding.suggestion.IsEmpty())
        output.DoWriteLine(L"  did you mean " + WithoutControls(finding.suggestion.View()) + L"?");
}

WString FormatAsJson(const Finding& finding, const WString& name)
{
    return WString::Format(L"{\"file\":%s,\"line\":%u,\"column\":%u,\"endColumn\":%u,"
                           L"\"severity\":\"%s\",\"code\":%s,\"message\":%s,\"suggestion\":%s}",
        QuoteForJson(name), finding.place.line + 1, finding.place.start + 1, finding.place.end + 1,
        GetSeverity(finding), QuoteForJson(finding.code), QuoteForJson(finding.message),
        QuoteForJson(finding.suggestion));
}
