#include "Text/NumberText.h"

#include "Text/CharacterCase.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <locale.h>
#include <wchar.h>

static const wchar_t* ReadAnyDouble(const wchar_t* text, double& value) noexcept
{
    static const locale_t portable = newlocale(LC_ALL_MASK, "C", nullptr);
    wchar_t* end = nullptr;
    value = wcstod_l(text, &end, portable);
    return end;
}

static bool IsExponentMark(wchar_t ch) noexcept
{
    return ch == L'e' || ch == L'E';
}

/// Whether a number begins as decimals do, without a sign; one that begins with "0x" is hexadecimal.
static bool StartsDecimal(const wchar_t* at) noexcept
{
    const bool isHexadecimal = *at == L'0' && (at[1] == L'x' || at[1] == L'X');
    return (IsDecimalDigit(*at) || *at == L'.') && !isHexadecimal;
}

/// Whether a decimal number may go on at `at`. A sign belongs to it directly behind the "e" only: "1+2" is read to the
/// "+".
static bool ContinuesDecimal(const wchar_t* at) noexcept
{
    if (*at == L'+' || *at == L'-')
        return IsExponentMark(at[-1]);
    return IsDecimalDigit(*at) || *at == L'.' || IsExponentMark(*at);
}

const wchar_t* ReadExponent(const wchar_t* at, int& power) noexcept
{
    const bool isNegative = *++at == L'-';
    if (isNegative || *at == L'+')
        ++at;
    const wchar_t* const first = at;
    int exponent = 0;
    for (; IsDecimalDigit(*at) && at - first < 3; ++at)
        exponent = exponent * 10 + static_cast<int>(*at - L'0');
    power += isNegative ? -exponent : exponent;
    const bool isExact = power >= -maxExactPower && power <= maxExactPower;
    return at == first || IsDecimalDigit(*at) || !isExact ? nullptr : at;
}

const wchar_t* ReadOtherDouble(const wchar_t* text, double& value) noexcept
{
    if (!StartsDecimal(text))
        return ReadAnyDouble(text, value);

    // Ordinary numbers: several times faster than wcstod, with the same value.
    std::array<char, 64> digits;
    std::size_t count = 0;
    while (count < digits.size() && ContinuesDecimal(text + count)) {
        digits[count] = static_cast<char>(text[count]);
        ++count;
    }
    if (count == digits.size())
        return ReadAnyDouble(text, value);
    const auto [behind, error] = std::from_chars(digits.data(), digits.data() + count, value);
    if (error == std::errc::result_out_of_range)
        return ReadAnyDouble(text, value);
    return text + (behind - digits.data());
}

bool TryReadDecimal(const wchar_t* text, const wchar_t* end, double& value, double min, double max) noexcept
{
    const bool negative = *text == L'-';
    if (negative || *text == L'+')
        ++text;
    if (!StartsDecimal(text))
        return false;
    double magnitude = 0;
    const wchar_t* const behind = ReadDouble(text, magnitude);
    const double number = negative ? -magnitude : magnitude;
    if (behind != end || number < min || number > max)
        return false;
    value = number;
    return true;
}

static unsigned int DigitValue(wchar_t ch) noexcept
{
    if (IsDecimalDigit(ch))
        return static_cast<unsigned int>(ch - L'0');
    const wchar_t letter = static_cast<wchar_t>(ch | 0x20);
    return letter >= L'a' && letter <= L'f' ? static_cast<unsigned int>(letter - L'a') + 10 : 16;
}

bool TryReadUnsigned(
    std::wstring_view text, unsigned int base, unsigned long long max, unsigned long long& value) noexcept
{
    unsigned long long read = 0;
    for (const wchar_t ch : text) {
        const unsigned int digit = DigitValue(ch);
        if (digit >= base || digit > max || read > (max - digit) / base)
            return false;
        read = read * base + digit;
    }
    if (text.empty())
        return false;
    value = read;
    return true;
}

bool TryReadUnsigned(std::wstring_view text, unsigned int base, unsigned int max, unsigned int& value) noexcept
{
    unsigned long long read = 0;
    if (!TryReadUnsigned(text, base, static_cast<unsigned long long>(max), read))
        return false;
    value = static_cast<unsigned int>(read);
    return true;
}

bool TryReadHexadecimal(std::wstring_view text, unsigned int& value, unsigned int min, unsigned int max) noexcept
{
    if (text.starts_with(L"0x") || text.starts_with(L"0X"))
        text.remove_prefix(2);
    unsigned int read = 0;
    if (!TryReadUnsigned(text, 16, max, read) || read < min)
        return false;
    value = read;
    return true;
}

bool TryReadVersion(std::wstring_view text, unsigned long long& value) noexcept
{
    constexpr unsigned int parts = 4;
    unsigned long long version = 0;
    unsigned int count = 0;
    for (;;) {
        const std::size_t dot = text.find(L'.');
        unsigned int number = 0;
        if (count == parts ||
            !TryReadUnsigned(text.substr(0, dot), 10, std::numeric_limits<std::uint16_t>::max(), number))
            return false;
        version = version << 16 | number;
        ++count;
        if (dot == std::wstring_view::npos)
            break;
        text.remove_prefix(dot + 1);
    }
    value = version << 16 * (parts - count);
    return true;
}

bool TryReadBool(std::wstring_view text, bool& value) noexcept
{
    const bool isTrue = EqualsIgnoreCase(text, L"true");
    if (!isTrue && !EqualsIgnoreCase(text, L"false"))
        return false;
    value = isTrue;
    return true;
}
