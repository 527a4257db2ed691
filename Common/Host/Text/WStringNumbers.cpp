#include "Text/NumberText.h"
#include "Text/WString.h"

static bool SkipDigits(const wchar_t*& at) noexcept
{
    const wchar_t* first = at;
    while (*at >= L'0' && *at <= L'9')
        ++at;
    return at != first;
}

/// [+|-] (digits [. [digits]] | . digits) [(e|E) [+|-] digits]
static const wchar_t* SkipDecimal(const wchar_t* at) noexcept
{
    if (*at == L'+' || *at == L'-')
        ++at;
    bool hasDigits = SkipDigits(at);
    if (*at == L'.')
        hasDigits = SkipDigits(++at) || hasDigits;
    if (!hasDigits)
        return nullptr;
    if (*at != L'e' && *at != L'E')
        return at;
    ++at;
    if (*at == L'+' || *at == L'-')
        ++at;
    return SkipDigits(at) ? at : nullptr;
}

bool WString::TryParseDouble(double& value, double min, double max) const
{
    if (SkipDecimal(data) != end())
        return false;
    const wchar_t* behind = nullptr;
    const double parsed = ReadDouble(data, &behind);
    if (parsed < min || parsed > max)
        return false;
    value = parsed;
    return true;
}

bool WString::TryGetHexUInt(unsigned int& value, unsigned int min, unsigned int max, WString* error) const
{
    const bool hasPrefix = StartsWith(L"0x", true);
    unsigned int parsed = 0;
    if (TryReadUnsigned(View().substr(hasPrefix ? 2 : 0), 16, max, parsed) && parsed >= min) {
        value = parsed;
        return true;
    }
    if (error)
        *error = Format(L"\"%s\" is not a hexadecimal number from %x to %x", *this, min, max);
    return false;
}

bool WString::TryGetBool(bool& value) const
{
    const bool isTrue = Equals(L"true", true);
    if (!isTrue && !Equals(L"false", true))
        return false;
    value = isTrue;
    return true;
}

bool WString::TryGetVersion(unsigned long long& value) const
{
    static constexpr unsigned int parts = 4;
    unsigned long long version = 0;
    unsigned int count = 0;
    for (std::wstring_view rest = View();;) {
        const std::size_t dot = rest.find(L'.');
        unsigned int number = 0;
        if (count == parts || !TryReadUnsigned(rest.substr(0, dot), 10, 0xFFFF, number))
            return false;
        version = version << 16 | number;
        ++count;
        if (dot == std::wstring_view::npos)
            break;
        rest.remove_prefix(dot + 1);
    }
    value = version << 16 * (parts - count);
    return true;
}
