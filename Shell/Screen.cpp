#include "Screen.h"

#include "Window.h"

#include <cstdlib>
#include <string_view>

#include <unistd.h>

namespace {
constexpr std::string_view erase_lc = "\r\x1b[K";

std::string_view GetVariable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

/// What cannot be shown now need not be shown later.
void Write(int descriptor, std::string_view bytes) noexcept
{
    [[maybe_unused]] const ssize_t written = write(descriptor, bytes.data(), bytes.size());
}
} // namespace

bool Screen::CanDrawOver(int descriptor)
{
    const std::string_view kind = GetVariable("TERM");
    return isatty(descriptor) == 1 && !kind.empty() && kind != "dumb";
}

bool Screen::ShowsUnicode()
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        if (const std::string_view locale = GetVariable(name); !locale.empty())
            return WString::FromUtf8(locale).ToLowerCase().IsWildcardMatch(L"*utf*8*", false);
    }
    return true;
}

void Screen::Line::Draw(const WString& text)
{
    // The last cell stays free: what stands in it makes some terminals go on to the next line.
    const WString line = WithoutControls(text);
    const WString fitting(FitIntoCells(line.View(), Window(descriptor).columns - 1));
    Write(descriptor, "\r" + fitting.ToUtf8() + "\x1b[K");
    isShown = true;
}

void Screen::Line::Erase() noexcept
{
    if (isShown)
        Write(descriptor, erase_lc);
    isShown = false;
}

void Screen::Line::Keep() noexcept
{
    if (isShown)
        Write(descriptor, "\n");
    isShown = false;
}
