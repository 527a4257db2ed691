#include "Window.h"

#include <sys/ioctl.h>

Window::Window(int descriptor)
{
    winsize size = {};
    if (ioctl(descriptor, TIOCGWINSZ, &size) != 0)
        return;
    if (size.ws_row != 0)
        rows = size.ws_row;
    if (size.ws_col != 0)
        columns = size.ws_col;
}

WString WithoutControls(const WString& text)
{
    WString line;
    for (const wchar_t ch : text)
        line += ch < L' ' || (ch >= 0x7F && ch < 0xA0) ? L' ' : ch;
    return line;
}

std::wstring_view FitIntoCells(std::wstring_view text, std::size_t cells)
{
    std::size_t length = 0;
    for (; length < text.size() && GetCells(text[length]) <= cells; ++length)
        cells -= GetCells(text[length]);
    return text.substr(0, length);
}

WString ClipToCells(std::wstring_view text, std::size_t cells)
{
    const std::wstring_view fitting = FitIntoCells(text, cells);
    if (fitting.size() == text.size() || cells == 0)
        return WString(fitting);
    return WString(FitIntoCells(text, cells - 1)) + L"\u2026";
}
