#include "FunctionArguments.h"
#include "FunctionClasses.h"
#include "Instrument/System.h"
#include "Saturate.h"
#include "Text/Abort.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

using namespace FunctionArguments;

namespace {
/// All arguments, of which there is one at least where `needsOne` says so.
std::vector<double> PopNumbers(EETokenStack& arguments, bool needsOne)
{
    std::vector<double> numbers;
    while (needsOne || !arguments.IsEmpty()) {
        numbers.push_back(PopNumber(arguments));
        needsOne = false;
    }
    return numbers;
}

/// What the least-squares line through points depends on.
struct PointSums
{
    double count = 0;
    double x = 0;
    double y = 0;
    double xx = 0;
    double xy = 0;

    double Determinant() const { return count * xx - x * x; }
};

/// Takes all arguments as pairs of x and y; throws `error` at the last one for an odd number of arguments or fewer than
/// two pairs.
PointSums PopPoints(EETokenStack& arguments, const EvaluatorError& error)
{
    if (arguments.Count() < 4 || arguments.Count() % 2 != 0)
        throw ExpressionEvaluatorException(error, arguments.GetTail().GetPosition());
    PointSums sums;
    for (; !arguments.IsEmpty(); ++sums.count) {
        const double x = PopNumber(arguments);
        const double y = PopNumber(arguments);
        sums.x += x;
        sums.y += y;
        sums.xx += x * x;
        sums.xy += x * y;
    }
    return sums;
}
} // namespace

double GetSum(std::span<const double> numbers)
{
    return std::accumulate(numbers.begin(), numbers.end(), 0.0);
}

double GetMean(std::span<const double> numbers)
{
    return GetSum(numbers) / static_cast<double>(numbers.size());
}

double GetGreatest(std::span<const double> numbers)
{
    return *std::ranges::max_element(numbers);
}

double GetSmallest(std::span<const double> numbers)
{
    return *std::ranges::min_element(numbers);
}

void EEAvg::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(GetMean(PopNumbers(arguments, false)));
}

void EEMax::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(GetGreatest(PopNumbers(arguments, true)));
}

void EEMin::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(GetSmallest(PopNumbers(arguments, true)));
}

void EESum::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(GetSum(PopNumbers(arguments, false)));
}

void EEMedian::Evaluate(EEToken& result, EETokenStack& arguments)
{
    std::vector<double> numbers = PopNumbers(arguments, true);
    std::ranges::sort(numbers, [](double left, double right) {
        Abort::ThrowIfRequested(); // millions of numbers take their time
        return left < right;
    });
    const std::size_t middle = numbers.size() / 2;
    if (numbers.size() % 2 != 0)
        result.SetValue(numbers[middle]);
    else
        result.SetValue((numbers[middle - 1] + numbers[middle]) * 0.5);
}

void EEMod::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const int dividend = PopInt32(arguments);
    const EEToken& argument = arguments.Pop();
    const int divisor = Saturate<int>(argument.GetNumber());
    if (divisor == 0)
        throw ExpressionEvaluatorException(Errors::ModulusByZero, argument.GetPosition());
    // The quotient of the smallest integer by -1 would overflow.
    result.SetValue(divisor == -1 ? 0.0 : static_cast<double>(dividend % divisor));
}

// The deviation of a sample, in one pass. For equal numbers rounding may leave a variance just below zero; the result
// is then NaN.
void EEStDev::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const int count = arguments.Count();
    if (count < 2)
        throw ExpressionEvaluatorException(Errors::StDevParameters, arguments.GetTail().GetPosition());
    double sum = 0;
    double squares = 0;
    while (!arguments.IsEmpty()) {
        const double number = PopNumber(arguments);
        sum += number;
        squares += number * number;
    }
    // A 32-bit product, which wraps for more than 46341 numbers.
    const int divisor = static_cast<int>(static_cast<unsigned int>(count) * static_cast<unsigned int>(count - 1));
    result.SetValue(std::sqrt((count * squares - sum * sum) / divisor));
}

void EESlope::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const PointSums sums = PopPoints(arguments, Errors::SlopeParameters);
    result.SetValue((sums.count * sums.xy - sums.x * sums.y) / sums.Determinant());
}

void EEIntercept::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const PointSums sums = PopPoints(arguments, Errors::InterceptParameters);
    result.SetValue((sums.y * sums.xx - sums.x * sums.xy) / sums.Determinant());
}

void EERand::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 2, 3, Errors::RandParameters);
    const bool rejects = arguments.Count() == 3;
    const int first = PopInt32(arguments);
    const EEToken& argument = arguments.Pop();
    const int second = Saturate<int>(argument.GetNumber());
    const int secondPosition = argument.GetPosition();
    const int rejected = rejects ? PopInt32(arguments) : 0;
    if (first == second)
        throw ExpressionEvaluatorException(Errors::RandSameLimits, secondPosition);
    // This ends: the range holds two values at least and one of them at most is rejected, so every draw serves with a
    // chance of one half or better.
    int drawn;
    do {
        drawn = System::random.Next32(std::min(first, second), std::max(first, second));
    } while (rejects && drawn == rejected);
    result.SetValue(static_cast<double>(drawn));
}
