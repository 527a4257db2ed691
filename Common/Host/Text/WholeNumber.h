#pragma once

#include <concepts>
#include <string_view>

/// The whole text as a decimal integer within [min, max]: optional sign and digits, no blanks. `value` is written on
/// success only.
template <std::integral T>
bool TryParseWhole(std::wstring_view text, T& value, T min, T max) noexcept
{
    const bool negative = text.starts_with(L'-');
    if (negative || text.starts_with(L'+'))
        text.remove_prefix(1);
    if (text.empty())
        return false;
    T number = 0;
    for (const wchar_t ch : text) {
        if (ch < L'0' || ch > L'9')
            return false;
        const int digit = static_cast<int>(ch - L'0');
        if (__builtin_mul_overflow(number, 10, &number) ||
            __builtin_add_overflow(number, negative ? -digit : digit, &number))
            return false;
    }
    if (number < min || number > max)
        return false;
    value = number;
    return true;
}
