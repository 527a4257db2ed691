#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

/// A part of a line, in characters from its start.
struct Span
{
    std::size_t start = 0;
    std::size_t end = 0;

    bool IsEmpty() const noexcept { return start >= end; }
    std::wstring_view In(std::wstring_view line) const { return line.substr(start, end - start); }
};

/// The place of the next character that is no blank, or the end of the line.
std::size_t SkipBlanks(std::wstring_view line, std::size_t position);
/// The part without the blanks at both ends.
Span Trim(std::wstring_view line, Span part);
/// Finds the first separator, of an ArgumentRecord, in a part of a line.
bool TryFindSeparator(std::wstring_view line, Span part, const wchar_t* separator, Span& found);
/// The pieces of a list, blanks and empty ones included.
std::vector<Span> SplitList(std::wstring_view line, Span list, wchar_t separator);
