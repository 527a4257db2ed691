#include "LineFormat.h"

#include "LinePieces.h"
#include "Text/CharacterCase.h"

#include <algorithm>

namespace {
using View = std::wstring_view;

bool IsTight(View separator)
{
    return separator == L";" || separator == L",";
}

/// What is to stand in front of the piece, where `former` stands now.
View GetGap(const LinePiece& piece, View line, View former)
{
    if (!std::ranges::all_of(former, IsWhiteSpace))
        return former;
    return piece.kind == LinePiece::Kind::Separator && IsTight(piece.place.In(line)) ? View() : L" ";
}

WString GetText(const LinePiece& piece, View line)
{
    const WString text(piece.place.In(line));
    if (piece.kind == LinePiece::Kind::Command)
        return piece.command->name;
    return piece.kind == LinePiece::Kind::Keyword ? text.Left(1).ToUpperCase() + text.Substring(1).ToLowerCase() : text;
}

/// Where a backslash would be the last character, the blanks behind it keep it from continuing the line.
std::size_t FindEnd(View line)
{
    const std::size_t end = Trim(line, {0, line.size()}).end;
    return line[end - 1] == L'\\' ? line.size() : end;
}
} // namespace

WString FormatLine(const WString& text)
{
    constexpr std::size_t safeLength = 4096; // of a command in a list, which may not grow beyond it
    const View line = text.View();
    const std::vector<LinePiece> pieces = ReadLinePieces(line);
    if (pieces.empty() || pieces.front().kind != LinePiece::Kind::Command)
        return text;
    const std::size_t start = pieces.front().place.start;
    WString formatted(line.substr(0, start));
    std::size_t end = start;
    for (const LinePiece& piece : pieces) {
        if (end != start)
            formatted.Append(GetGap(piece, line, Span{end, piece.place.start}.In(line)));
        formatted += GetText(piece, line);
        end = piece.place.end;
    }
    formatted.Append(Span{end, FindEnd(line)}.In(line));
    return formatted.Length() > line.size() && formatted.Length() > safeLength ? text : formatted;
}
