#pragma once

#include "HostApi.h"

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string_view>

/// Numbers as text in the portable locale, whatever the locale of the process. The Try operations take the whole text,
/// blanks and all, and write their result on success only.

/// Converts the longest prefix of `text` that is a number, as wcstod does in the portable locale (hexadecimal forms
/// included), and returns the place behind it, which is `text` when there is no number. A number too large for a double
/// gives infinity.
inline const wchar_t* ReadDouble(const wchar_t* text, double& value) noexcept;

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

/// "true" or "false" in any case.
HOST_API bool TryReadBool(std::wstring_view text, bool& value) noexcept;

// In line, for nearly every number of an expression takes this path.

constexpr int maxExactPower = 22;
/// Reads an exponent, from its letter on, and adds it to `power`; null unless it is one and the sum exact.
HOST_API const wchar_t* ReadExponent(const wchar_t* at, int& power) noexcept;

/// A short decimal number without a sign: its digits and its power of ten are exact, so that the one rounding of their
/// product or quotient gives the nearest double (Clinger: How to Read Floating Point Numbers Accurately, 1990). Null
/// for others.
[[gnu::always_inline]] inline const wchar_t* ReadShortDouble(const wchar_t* text, double& value) noexcept
{
    constexpr unsigned int maxDigits = 15;
    static constexpr double powers[maxExactPower + 1] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11,
        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    std::uint64_t digits = 0;
    const wchar_t* at = text;
    const auto readDigits = [&] {
        for (; *at >= L'0' && *at <= L'9'; ++at)
            digits = digits * 10 + static_cast<unsigned int>(*at - L'0');
    };
    readDigits();
    std::ptrdiff_t count = at - text;
    int power = 0;
    if (*at == L'.') {
        const wchar_t* const first = ++at;
        readDigits();
        count += at - first;
        power = static_cast<int>(first - at);
    }
    if (static_cast<std::size_t>(count - 1) >= maxDigits)
        return nullptr;
    const wchar_t letter = *at | 0x20; // in lower case
    if (letter == L'x' || (letter == L'e' && !(at = ReadExponent(at, power))))
        return nullptr;
    value = static_cast<double>(static_cast<std::int64_t>(digits)); // from a signed one in one instruction
    if (power != 0)
        value = power < 0 ? value / powers[-power] : value * powers[power];
    return at;
}

HOST_API const wchar_t* ReadOtherDouble(const wchar_t* text, double& value) noexcept;

[[gnu::always_inline]] inline const wchar_t* ReadDouble(const wchar_t* text, double& value) noexcept
{
    const wchar_t* const end = ReadShortDouble(text, value);
    return end ? end : ReadOtherDouble(text, value);
}
