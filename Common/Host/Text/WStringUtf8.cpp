#include "Text/Abort.h"
#include "Text/WString.h"

#include <algorithm>
#include <iterator>
#include <type_traits>
#include <utf8.h>

/// The length of the text's next part. No part begins within a character, nor within what becomes one U+FFFD.
static std::size_t GetPartLength(std::string_view text)
{
    const auto continues = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; };
    std::size_t length = std::min(text.size(), Abort::interval);
    while (length < text.size() && continues(text[length]))
        ++length;
    return length;
}

/// Whether it is short, besides, so that it is handled without a look at the abort request.
template <typename Text>
static bool IsShortAscii(const Text& text)
{
    const auto isAscii = [](auto ch) { return static_cast<std::make_unsigned_t<decltype(ch)>>(ch) < 0x80; };
    return text.size() <= Abort::interval && std::ranges::all_of(text, isAscii);
}

WString WString::FromUtf8(std::string_view text)
{
    WString result;
    if (IsShortAscii(text)) {
        if (text.size() > result.capacity)
            result.Reserve(text.size());
        std::ranges::copy(text, result.data);
        result.length = text.size();
        result.data[result.length] = 0;
        return result;
    }
    std::string valid;
    while (!text.empty()) {
        const std::string_view part = text.substr(0, GetPartLength(text));
        valid.clear();
        utf8::replace_invalid(part.begin(), part.end(), std::back_inserter(valid));
        for (auto at = valid.begin(); at != valid.end();)
            result.Append(static_cast<wchar_t>(utf8::unchecked::next(at)));
        text.remove_prefix(part.size());
        if (!text.empty())
            Abort::ThrowIfRequested();
    }
    return result;
}

std::string WString::ToUtf8() const
{
    if (IsShortAscii(View()))
        return std::string(begin(), end());
    constexpr char32_t replacement = 0xFFFD;
    std::string result;
    Abort::Watch watch;
    for (const wchar_t ch : *this) {
        watch.Step();
        const auto code = static_cast<char32_t>(ch);
        const bool valid = code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
        utf8::unchecked::append(valid ? code : replacement, std::back_inserter(result));
    }
    return result;
}
