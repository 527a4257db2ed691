#pragma once

#include "Text/WString.h"

/// What stands behind a file descriptor when it is a terminal.
namespace Screen {
/// Whether lines can be drawn over: a terminal, and not one that TERM calls dumb.
bool CanDrawOver(int descriptor);
/// Whether it shows more than the characters of ASCII, as the environment says.
bool ShowsUnicode();

/// A line of the terminal that is drawn over and over. It holds no line feed, so that nothing is left of it when it is
/// erased. For a descriptor that lines can be drawn over.
class Line
{
public:
    explicit Line(int descriptor) : descriptor(descriptor) {}

    /// Shows the text, without control characters and cut off at the width of the window.
    void Draw(const WString& text);
    void Erase() noexcept;
    /// Leaves what is shown, and begins a new line.
    void Keep() noexcept;

private:
    const int descriptor;
    bool isShown = false;
};
} // namespace Screen
