#include "NumberFormat.h"

#include "Text/ExitCode.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cwchar>
#include <iterator>
#include <system_error>

void MyEcvt(WString& digits, double value, int count, int* point, int* sign)
{
    constexpr unsigned short conversionModule = 200;

    // "d.ddde+xx"; the digits are rounded exactly.
    char text[64];
    const auto [end, error] =
        std::to_chars(text, std::end(text), std::fabs(value), std::chars_format::scientific, count - 1);
    if (error != std::errc())
        throw ExitCode(0, conversionModule, static_cast<unsigned int>(error));

    const char* mark = std::find(text, end, 'e');
    const bool negativeExponent = mark[1] == '-';
    int exponent = 0;
    std::from_chars(mark + 2, end, exponent);

    digits.Clear();
    for (const char* ch = text; ch != mark; ++ch) {
        if (*ch != '.')
            digits += static_cast<wchar_t>(*ch);
    }
    *point = value == 0 ? 0 : 1 + (negativeExponent ? -exponent : exponent);
    *sign = std::signbit(value) ? 1 : 0;
}

void MyItow(int value, wchar_t* buffer, unsigned int size)
{
    std::swprintf(buffer, size / sizeof(wchar_t), L"%d", value);
}

namespace {
/// How a number is laid out: so many digits before the decimal point (at or below 0, zeros behind it), and the
/// exponent.
struct Layout
{
    int wholeDigits;
    int exponent;
};

Layout ShortLayout(int point, int count)
{
    if (point >= -1 && point <= count)
        return {point, 0};
    return {1, point - 1};
}

/// The exponent is the largest multiple of 3 below the point. A mantissa too short for its whole digits gets none of
/// them.
Layout EngineeringLayout(int point, int count)
{
    if (point >= 1 && point <= count)
        return {point, 0};
    const int exponent = 3 * (point > 0 ? (point - 1) / 3 : point / 3 - 1);
    const int wholeDigits = point - exponent;
    if (wholeDigits > count)
        return {0, exponent + 3};
    return {wholeDigits, exponent};
}

wchar_t* WriteMantissa(wchar_t* out, const WString& digits, int wholeDigits)
{
    if (wholeDigits <= 0) {
        *out++ = L'0';
        *out++ = L'.';
        out = std::fill_n(out, -wholeDigits, L'0');
        return std::copy(digits.begin(), digits.end(), out);
    }
    const wchar_t* fraction = digits.begin() + wholeDigits;
    out = std::copy(digits.begin(), fraction, out);
    if (fraction == digits.end())
        return out;
    *out++ = L'.';
    return std::copy(fraction, digits.end(), out);
}

/// The end of the mantissa without the zeros that end its fraction, and without a point that then stands at its end.
wchar_t* WithoutEndingZeros(wchar_t* begin, wchar_t* end)
{
    if (std::find(begin, end, L'.') == end)
        return end;
    while (end[-1] == L'0')
        --end;
    return end[-1] == L'.' ? end - 1 : end;
}

void WriteExponent(wchar_t* out, int exponent)
{
    wchar_t text[12];
    MyItow(exponent, text, sizeof text);
    *out++ = L'e';
    std::wcscpy(out, text);
}

wchar_t* WriteNumber(double value, int count, wchar_t* out, bool removeEndingZeros, Layout (*layoutFor)(int, int))
{
    if (!std::isfinite(value))
        return std::wcscpy(out, std::isnan(value) ? L"nan" : value < 0 ? L"-inf" : L"inf");

    WString digits;
    int point = 0;
    int sign = 0;
    MyEcvt(digits, value, count, &point, &sign);
    const Layout layout = value == 0 ? Layout{1, 0} : layoutFor(point, count);

    wchar_t* mantissa = out;
    if (sign != 0)
        *mantissa++ = L'-';
    wchar_t* end = WriteMantissa(mantissa, digits, layout.wholeDigits);
    if (removeEndingZeros)
        end = WithoutEndingZeros(mantissa, end);
    *end = 0;
    if (layout.exponent != 0)
        WriteExponent(end, layout.exponent);
    return out;
}
} // namespace

wchar_t* efFcvt(double value, short digits, wchar_t* out)
{
    return WriteNumber(value, digits, out, false, ShortLayout);
}

wchar_t* efFtoa(double value, short digits, wchar_t* out)
{
    return WriteNumber(value, digits, out, true, ShortLayout);
}

wchar_t* efFmtEng(double value, int digits, wchar_t* out, bool removeEndingZeros)
{
    return WriteNumber(value, digits, out, removeEndingZeros, EngineeringLayout);
}

double efAdjustDblForDisplay(double value, int decimals)
{
    if (value == 0)
        return value;
    const double exponent = std::ceil(std::log10(std::fabs(value)));
    return exponent + decimals <= 15 ? value + std::pow(10.0, exponent - 16) : value;
}

WString DoubleToString(double value)
{
    wchar_t text[numberTextSize];
    return efFtoa(value, 15, text);
}
