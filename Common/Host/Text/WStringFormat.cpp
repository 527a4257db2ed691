#include "Text/WString.h"

#include <cmath>
#include <fmt/printf.h>
#include <stdexcept>

static constexpr unsigned int maxField = 4096; // of a width or precision: a wrong one must not eat the memory

static const wchar_t* SkipField(const wchar_t* at)
{
    unsigned int field = 0;
    for (; *at >= L'0' && *at <= L'9'; ++at) {
        field = field * 10 + static_cast<unsigned int>(*at - L'0');
        if (field > maxField)
            throw std::invalid_argument("WString::Format: width or precision is too large");
    }
    return at;
}

/// Behind "%" stands: [flags] [width] [. precision] conversion. Returns the place of the conversion.
static const wchar_t* FindConversion(const wchar_t* at)
{
    while (*at != 0 && std::wcschr(L"-+ 0", *at))
        ++at;
    at = SkipField(at);
    return *at == L'.' ? SkipField(at + 1) : at;
}

static std::wstring FormatInteger(std::wstring directive, const FormatArgument& argument)
{
    switch (directive.back()) {
    case L'd':
    case L'i':
        if (argument.kind == FormatArgument::Kind::Signed)
            return fmt::sprintf(directive, argument.signedValue);
        directive.back() = L'u'; // no sign for numbers beyond the signed range
        return fmt::sprintf(directive, argument.unsignedValue);
    case L'u':
    case L'x':
    case L'X': return fmt::sprintf(directive, argument.unsignedValue);
    case L'c': return fmt::sprintf(directive, static_cast<wchar_t>(argument.unsignedValue));
    default: throw std::invalid_argument("WString::Format: not a conversion of an integer");
    }
}

static std::wstring FormatDouble(const std::wstring& directive, double value)
{
    if (!std::wcschr(L"feg", directive.back()))
        throw std::invalid_argument("WString::Format: not a conversion of a floating-point number");
    return fmt::sprintf(directive, std::isnan(value) ? std::abs(value) : value); // "nan", never "-nan"
}

static std::wstring FormatText(const std::wstring& directive, std::wstring_view text)
{
    if (directive.back() != L's')
        throw std::invalid_argument("WString::Format: not a conversion of a text");
    return fmt::sprintf(directive, text);
}

static std::wstring FormatOne(std::wstring directive, const FormatArgument& argument)
{
    switch (argument.kind) {
    case FormatArgument::Kind::Signed:
    case FormatArgument::Kind::Unsigned: return FormatInteger(std::move(directive), argument);
    case FormatArgument::Kind::Double: return FormatDouble(directive, argument.doubleValue);
    case FormatArgument::Kind::Text: return FormatText(directive, argument.text);
    case FormatArgument::Kind::None: break;
    }
    throw std::invalid_argument("WString::Format: missing argument");
}

void WString::AppendFormatted(const wchar_t* format, const FormatArgument* arguments, std::size_t count)
{
    static const FormatArgument missing;
    WString made; // beside this one, since arguments may be part of it
    std::size_t next = 0;
    while (const wchar_t* percent = std::wcschr(format, L'%')) {
        made.Append(format, static_cast<std::size_t>(percent - format));
        const wchar_t* conversion = FindConversion(percent + 1);
        if (*conversion == 0)
            throw std::invalid_argument("WString::Format: a conversion is missing");
        if (*conversion == L'%') {
            made += L'%';
        } else {
            const FormatArgument& argument = next < count ? arguments[next++] : missing;
            if (*conversion == L's' && conversion == percent + 1 && argument.kind == FormatArgument::Kind::Text)
                made.Append(argument.text); // as it stands: the most frequent one, and the only one that may be long
            else
                made.Append(FormatOne(std::wstring(percent, conversion + 1), argument));
        }
        format = conversion + 1;
    }
    made += format;
    *this += made;
}
