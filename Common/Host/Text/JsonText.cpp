#include "Text/JsonText.h"

#include "Text/NumberText.h"

#include <charconv>
#include <limits>
#include <string_view>

WString QuoteForJson(const WString& text)
{
    WString result = L"\"";
    for (const wchar_t ch : text) {
        if (ch == L'"' || ch == L'\\')
            result += L'\\';
        if (ch < L' ')
            result += WString::Format(L"\\u%04x", static_cast<unsigned int>(ch));
        else
            result += ch;
    }
    return result + L"\"";
}

template <typename Number>
static WString Write(Number number)
{
    char text[32];
    return WString::FromUtf8(std::string_view(text, std::to_chars(text, std::end(text), number).ptr));
}

/// Whole numbers have more digits than a floating one.
WString NumberForJson(const WString& text)
{
    using Limits = std::numeric_limits<long long>;
    using UnsignedLimits = std::numeric_limits<unsigned long long>;
    long long whole = 0;
    unsigned long long natural = 0;
    double number = 0;
    if (TryParseWhole(text.View(), whole, Limits::min(), Limits::max()))
        return Write(whole);
    if (TryParseWhole(text.View(), natural, UnsignedLimits::min(), UnsignedLimits::max()))
        return Write(natural);
    text.TryParseDouble(number);
    return Write(number);
}
