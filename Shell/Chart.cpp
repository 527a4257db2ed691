#include "Chart.h"

#include "Statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <utility>

namespace {
constexpr std::wstring_view blocks_lc = L"\u2581\u2582\u2583\u2584\u2585\u2586\u2587\u2588"; // from low to high
constexpr std::wstring_view plain_lc = L"_.,-=+*#";
static_assert(blocks_lc.size() == plain_lc.size());

constexpr unsigned int maxBars = 20; // of whole numbers; of ranges half as many, or a few more

struct Bar
{
    WString label;
    unsigned int count = 0;
};

/// The least of 1, 2 and 5 times a power of ten that is not below the number.
double RoundUpToStep(double number)
{
    const double power = std::pow(10, std::floor(std::log10(number)));
    for (const double factor : {1, 2, 5}) {
        if (number <= factor * power)
            return factor * power;
    }
    return 10 * power;
}

/// Neighbouring ranges of one width, from the one that holds the least number to that of the greatest.
class Ranges
{
public:
    /// For a least number that is below the greatest.
    Ranges(double least, double greatest, bool isWhole);

    std::vector<Bar> MakeBars() const;
    std::size_t Find(double number) const
    {
        const double index = std::floor(number / width) - first;
        return static_cast<std::size_t>(std::clamp(index, 0.0, static_cast<double>(count - 1)));
    }

private:
    const bool isOneNumberEach;
    double width = 1;
    double first = 0; // the lower end of the first range, in widths
    std::size_t count = 1;
};

Ranges::Ranges(double least, double greatest, bool isWhole) : isOneNumberEach(isWhole && greatest - least < maxBars)
{
    constexpr double parts = maxBars / 2.0;
    const double part = greatest / parts - least / parts; // their difference may be too large for a double
    const double finest = std::max(std::fabs(least), std::fabs(greatest)) * std::numeric_limits<double>::epsilon();
    if (!isOneNumberEach) // wide enough to be counted in, and to be told apart
        width = RoundUpToStep(std::max({part, finest, std::numeric_limits<double>::min()}));
    first = std::floor(least / width);
    count = static_cast<std::size_t>(std::min(std::floor(greatest / width) - first + 1, static_cast<double>(maxBars)));
}

std::vector<Bar> Ranges::MakeBars() const
{
    std::vector<Bar> bars(count);
    for (std::size_t index = 0; index < count; ++index) {
        const double start = (first + static_cast<double>(index)) * width;
        bars[index].label = FormatNumber(start);
        if (!isOneNumberEach)
            bars[index].label += L" to " + FormatNumber(start + width);
    }
    return bars;
}

std::vector<Bar> CountNumbers(const std::vector<double>& numbers)
{
    const auto [least, greatest] = std::ranges::minmax(numbers);
    if (least == greatest)
        return {{FormatNumber(least), static_cast<unsigned int>(numbers.size())}};
    const Ranges ranges(
        least, greatest, std::ranges::all_of(numbers, [](double number) { return number == std::floor(number); }));
    std::vector<Bar> bars = ranges.MakeBars();
    for (const double number : numbers)
        ++bars[ranges.Find(number)].count;
    return bars;
}
} // namespace

WString Chart::DrawTrend(const std::vector<double>& numbers, bool isUnicode)
{
    const std::wstring_view heights = isUnicode ? blocks_lc : plain_lc;
    double least = std::numeric_limits<double>::infinity();
    double greatest = -least;
    for (const double number : numbers) {
        least = std::fmin(least, number); // which passes over NaN
        greatest = std::fmax(greatest, number);
    }
    const auto getHeight = [&](double number) {
        const double part = greatest > least ? (number / 2 - least / 2) / (greatest / 2 - least / 2) : 0.5;
        return heights[static_cast<std::size_t>(std::lround(part * static_cast<double>(heights.size() - 1)))];
    };
    WString trend;
    for (const double number : numbers)
        trend += std::isnan(number) ? L' ' : getHeight(number);
    return trend;
}

WStringArray Chart::DrawHistogram(const std::vector<double>& numbers, unsigned int width, bool isUnicode)
{
    WStringArray lines;
    if (numbers.empty())
        return lines;
    const std::vector<Bar> bars = CountNumbers(numbers);
    std::size_t labelWidth = 0;
    unsigned int highest = 0;
    for (const Bar& bar : bars) {
        labelWidth = std::max(labelWidth, bar.label.Length());
        highest = std::max(highest, bar.count);
    }
    const std::size_t countWidth = FormatNumber(highest).Length();
    const std::size_t taken = labelWidth + countWidth + 3; // with the blanks between them
    const std::size_t room = width > taken ? width - taken : 1;
    for (const Bar& bar : bars) {
        const WString count = FormatNumber(bar.count);
        const auto length = static_cast<std::size_t>(std::ceil(static_cast<double>(bar.count * room) / highest));
        WString line = WString(labelWidth - bar.label.Length(), L' ') + bar.label + L"  " +
            WString(countWidth - count.Length(), L' ') + count;
        if (length > 0)
            line += L" " + WString(length, isUnicode ? L'\u2588' : L'#');
        lines.Add(std::move(line));
    }
    return lines;
}
