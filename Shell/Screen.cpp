#include "Screen.h"

#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <string_view>

#include <sys/ioctl.h>
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

/// The cells that the character takes, in whatever locale the process is.
unsigned int GetCells(wchar_t ch)
{
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t former = uselocale(unicode); // of this thread; where there is none it changes nothing
    const int cells = wcwidth(ch);
    uselocale(former);
    return cells < 0 ? 1 : static_cast<unsigned int>(cells);
}

/// As much of the text as fits into so many cells.
WString Fit(const WString& text, unsigned int width)
{
    WString fitting;
    unsigned int cells = 0;
    for (const wchar_t ch : text) {
        cells += GetCells(ch);
        if (cells > width)
            break;
        const bool isControl = ch < L' ' || (ch >= 0x7F && ch < 0xA0);
        fitting += isControl ? L' ' : ch;
    }
    return fitting;
}
} // namespace

bool Screen::CanDrawOver(int descriptor)
{
    const std::string_view kind = GetVariable("TERM");
    return isatty(descriptor) == 1 && !kind.empty() && kind != "dumb";
}

unsigned int Screen::GetWidth(int descriptor)
{
    constexpr unsigned int usual = 80;
    winsize window = {};
    return ioctl(descriptor, TIOCGWINSZ, &window) == 0 && window.ws_col > 0 ? window.ws_col : usual;
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
    Write(descriptor, "\r" + Fit(text, GetWidth(descriptor) - 1).ToUtf8() + "\x1b[K");
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
