#pragma once

#include "HostApi.h"

#include <cmath>
#include <concepts>
#include <limits>
#include <string_view>

/// Numbers as text in the portable locale, whatever the locale of the process. The Try operations take the whole text,
/// blanks and all, and write their result on success only.

/// Converts the longest prefix of `text` that is a number, as wcstod does in the portable locale (hexadecimal forms
/// included), and puts the place behind it into `end`; `end` is `text` when there is no number. A number too large
/// for a double gives infinity.
HOST_API double ReadDouble(const wchar_t* text, const wchar_t** end) noexcept;

/// A decimal number within [min, max]: optional sign, digits with optional fraction ("5." and ".5" too) and exponent.
/// `end` is the end of the text and has a terminating zero.
HOST_API bool TryReadDecimal(const wchar_t* text, const wchar_t* end, double& value, double min, double max) noexcept;

/// An unsigned number of at most `max`: one or more digits of `base` (up to 16, letters of either case).
HOST_API bool TryReadUnsigned(
    std::wstring_view text, unsigned int base, unsigned long long max, unsigned long long& value) noexcept;
HOST_API bool TryReadUnsigned(
    std::wstring_view text, unsigned int base, unsigned int max, unsigned int& value) noexcept;

/// A hexadecimal number within [min, max]: optional "0x" and digits, letters of either case.
HOST_API bool TryReadHexadecimal(
    std::wstring_view text, unsigned int& value, unsigned int min, unsigned int max) noexcept;

/// One to four numbers of 0 to 65535 separated by dots, 16 bits each, the first one uppermost.
HOST_API bool TryReadVersion(std::wstring_view text, unsigned long long& value) noexcept;

/// A decimal integer within [min, max]: optional sign and digits.
template <std::integral T>
bool TryParseWhole(std::wstring_view text, T& value, T min, T max) noexcept
{
    const bool negative = text.starts_with(L'-');
    if (negative || text.starts_with(L'+'))
        text.remove_prefix(1);
    constexpr auto largest = static_cast<unsigned long long>(std::numeric_limits<T>::max());
    const unsigned long long limit = !negative ? largest : std::signed_integral<T> ? largest + 1 : 0;
    unsigned long long magnitude = 0;
    if (!TryReadUnsigned(text, 10, limit, magnitude))
        return false;
    const T number = static_cast<T>(negative ? 0 - magnitude : magnitude);
    if (number < min || number > max)
        return false;
    value = number;
    return true;
}

/// A whole number of at most 32 bits within [min, max] in any decimal form: "12", "12.0" or "1.2e1". `end` is the end
/// of the text and has a terminating zero.
template <std::integral T>
bool TryReadWholeDecimal(const wchar_t* text, const wchar_t* end, T& value, T min, T max) noexcept
{
    static_assert(sizeof(T) <= sizeof(int), "each must be a double without loss");
    double number = 0;
    if (!TryReadDecimal(text, end, number, min, max) || number != std::floor(number))
        return false;
    value = static_cast<T>(number);
    return true;
}
