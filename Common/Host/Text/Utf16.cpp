#include "Text/Utf16.h"

#include "Text/HostError.h"
#include "Text/WString.h"

#include <utility>

static constexpr bool IsHigh(unsigned int unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

static constexpr bool IsLow(unsigned int unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

/// Whether a text begins so that is neither UTF-8 nor UTF-16 with a byte order mark.
static bool IsForeign(std::string_view start)
{
    const bool isMarked = start.starts_with("\xFE\xFF") || start.starts_with("\xFF\xFE");
    return isMarked ? start.substr(2, 2) == std::string_view("\0\0", 2)
                    : start.substr(0, 4).find('\0') != std::string_view::npos;
}

std::optional<Utf16Decoder> Utf16Decoder::TryRecognise(std::string_view start, const std::string& name)
{
    if (IsForeign(start))
        throw HostException(HostError::FileError,
            WString::FromUtf8(name + ": UTF-32, or UTF-16 without a byte order mark; save it as UTF-8"));
    if (!start.starts_with("\xFE\xFF") && !start.starts_with("\xFF\xFE"))
        return std::nullopt;
    return Utf16Decoder(start[0] == '\xFE');
}

std::string Utf16Decoder::Decode(std::string_view bytes)
{
    rest += bytes;
    const auto getUnit = [this](std::size_t at) {
        const auto first = static_cast<unsigned char>(rest[at]);
        const auto second = static_cast<unsigned char>(rest[at + 1]);
        return static_cast<unsigned int>(isBigEndian ? first << 8 | second : second << 8 | first);
    };
    std::wstring text;
    std::size_t position = 0;
    while (position + 2 <= rest.size()) {
        unsigned int ch = getUnit(position);
        if (IsHigh(ch) && position + 4 > rest.size())
            break;
        position += 2;
        if (IsHigh(ch) && IsLow(getUnit(position))) {
            ch = 0x10000 + ((ch - 0xD800) << 10) + (getUnit(position) - 0xDC00);
            position += 2;
        }
        text += static_cast<wchar_t>(ch); // a half alone is replaced on the way to UTF-8
    }
    rest.erase(0, position);
    return WString(text).ToUtf8();
}

std::string Utf16Decoder::Finish()
{
    return std::exchange(rest, {}).empty() ? "" : "\xEF\xBF\xBD";
}
