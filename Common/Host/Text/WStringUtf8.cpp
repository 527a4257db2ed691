#include "Text/WString.h"

#include <iterator>
#include <utf8.h>

WString WString::FromUtf8(std::string_view text)
{
    std::string valid;
    utf8::replace_invalid(text.begin(), text.end(), std::back_inserter(valid));
    WString result;
    for (auto at = valid.begin(); at != valid.end();)
        result.Append(static_cast<wchar_t>(utf8::unchecked::next(at)));
    return result;
}

std::string WString::ToUtf8() const
{
    constexpr char32_t replacement = 0xFFFD;
    std::string result;
    for (const wchar_t ch : *this) {
        const auto code = static_cast<char32_t>(ch);
        const bool valid = code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF);
        utf8::unchecked::append(valid ? code : replacement, std::back_inserter(result));
    }
    return result;
}
