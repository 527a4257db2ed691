#pragma once

#include "Text/Cells.h"
#include "Text/WString.h"

#include <string_view>

/// The window of a terminal, in cells. One whose size is not known has the usual one.
struct Window
{
    unsigned int rows = 24;
    unsigned int columns = 80;

    explicit Window(int descriptor);
    bool operator==(const Window&) const = default;
};

/// The text with blanks for control characters, for the terminal.
WString WithoutControls(const WString& text);
/// As much of the beginning of the text as fits into so many cells.
std::wstring_view FitIntoCells(std::wstring_view text, std::size_t cells);
/// The text, or as much of it as leaves room for the "…" behind it.
WString ClipToCells(std::wstring_view text, std::size_t cells);
