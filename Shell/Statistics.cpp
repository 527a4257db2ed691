#include "Statistics.h"

#include <algorithm>
#include <cmath>

static constexpr int maxDigits = 15; // that any decimal number keeps in a double

/// Welford: Note on a Method for Calculating Corrected Sums of Squares and Products, 1962. Differences of large squares
/// would leave nothing of a small spread.
void Statistics::Add(double number) noexcept
{
    least = count == 0 ? number : std::min(least, number);
    greatest = count == 0 ? number : std::max(greatest, number);
    ++count;
    constexpr double large = 0x1p500; // beyond it squares, and even distances, may be too large for a double
    if (unit == 1 && std::fabs(number) > large) {
        unit = 0x1p600; // dividing by which loses no digit
        mean /= unit;
        squares = squares / unit / unit;
    }
    const double distance = number / unit - mean;
    mean += distance / static_cast<double>(count);
    squares += distance * (number / unit - mean);
}

double Statistics::GetDeviation() const noexcept
{
    return count < 2 ? 0 : std::sqrt(squares / static_cast<double>(count - 1)) * unit;
}

WString Statistics::Describe() const
{
    const double deviation = GetDeviation();
    WString text =
        WString::Format(L"n %s  mean %s", FormatNumber(static_cast<double>(count)), FormatWithin(GetMean(), deviation));
    if (count > 1)
        text += L"  sd " + FormatWithin(deviation, deviation);
    return text + L"  min " + FormatNumber(least) + L"  max " + FormatNumber(greatest);
}

WString FormatNumber(double number)
{
    return WString::Format(L"%.15g", number == 0 ? 0.0 : number); // no "-0"
}

/// The place of the first digit: 0 for the ones, -1 for the tenths.
static int GetPlace(double number)
{
    return static_cast<int>(std::floor(std::log10(std::fabs(number))));
}

WString FormatWithin(double number, double spread)
{
    if (spread == 0 || !std::isfinite(spread) || !std::isfinite(number))
        return FormatNumber(number);
    const int place = std::max(GetPlace(spread), number == 0 ? GetPlace(spread) : GetPlace(number));
    const int decimals = std::clamp(2 - GetPlace(spread), 0, std::max(maxDigits - 1 - place, 0));
    const bool isPlain = place < maxDigits && decimals <= maxDigits;
    const WString format = isPlain ? WString::Format(L"%%.%df", decimals)
                                   : WString::Format(L"%%.%dg", std::min(place + 1 + decimals, maxDigits));
    const WString within = WString::Format(format.ToCString(), number);
    const WString whole = FormatNumber(number);
    return whole.Length() < within.Length() ? whole : within;
}
