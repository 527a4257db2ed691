#include "Text/NumberText.h"

#include <array>
#include <charconv>
#include <locale.h>
#include <wchar.h>

static double ReadAnyDouble(const wchar_t* text, const wchar_t** end) noexcept
{
    static const locale_t portable = newlocale(LC_ALL_MASK, "C", nullptr);
    wchar_t* behind = nullptr;
    const double value = wcstod_l(text, &behind, portable);
    *end = behind;
    return value;
}

static bool IsExponentMark(wchar_t ch) noexcept
{
    return ch == L'e' || ch == L'E';
}

/// Whether a decimal number may go on at `at`. A sign belongs to it directly behind the "e" only: "1+2" is read to the
/// "+".
static bool ContinuesDecimal(const wchar_t* at) noexcept
{
    if (*at == L'+' || *at == L'-')
        return IsExponentMark(at[-1]);
    return (*at >= L'0' && *at <= L'9') || *at == L'.' || IsExponentMark(*at);
}

double ReadDouble(const wchar_t* text, const wchar_t** end) noexcept
{
    const bool startsPlain = (*text >= L'0' && *text <= L'9') || *text == L'.';
    const bool isHexadecimal = *text == L'0' && (text[1] == L'x' || text[1] == L'X');
    if (!startsPlain || isHexadecimal)
        return ReadAnyDouble(text, end);

    // Ordinary numbers: several times faster than wcstod, with the same value.
    std::array<char, 64> digits;
    std::size_t count = 0;
    while (count < digits.size() && ContinuesDecimal(text + count)) {
        digits[count] = static_cast<char>(text[count]);
        ++count;
    }
    if (count == digits.size())
        return ReadAnyDouble(text, end);
    double value = 0;
    const auto [behind, error] = std::from_chars(digits.data(), digits.data() + count, value);
    if (error == std::errc::result_out_of_range)
        return ReadAnyDouble(text, end);
    *end = text + (behind - digits.data());
    return value;
}

static unsigned int DigitValue(wchar_t ch) noexcept
{
    if (ch >= L'0' && ch <= L'9')
        return static_cast<unsigned int>(ch - L'0');
    const wchar_t letter = static_cast<wchar_t>(ch | 0x20);
    return letter >= L'a' && letter <= L'f' ? static_cast<unsigned int>(letter - L'a') + 10 : 16;
}

bool TryReadUnsigned(std::wstring_view text, unsigned int base, unsigned int max, unsigned int& value) noexcept
{
    unsigned long long read = 0;
    for (const wchar_t ch : text) {
        const unsigned int digit = DigitValue(ch);
        if (digit >= base)
            return false;
        read = read * base + digit;
        if (read > max)
            return false;
    }
    if (text.empty())
        return false;
    value = static_cast<unsigned int>(read);
    return true;
}
