#pragma once

#include "Text/WString.h"

/// Count, mean, spread and range of numbers that are taken one at a time.
class Statistics
{
public:
    void Add(double number) noexcept;

    unsigned long long GetCount() const noexcept { return count; }
    double GetMean() const noexcept { return mean * unit; }
    /// That of a sample (divisor n - 1); 0 for fewer than two numbers.
    double GetDeviation() const noexcept;
    double GetLeast() const noexcept { return least; }
    double GetGreatest() const noexcept { return greatest; }

    /// "n 3  mean 36.853  sd 0.278  min 36.65  max 37.17"; of one number there is no "sd".
    WString Describe() const;

private:
    unsigned long long count = 0;
    double unit = 1; // of the mean
    double mean = 0;
    double squares = 0; // of the distances from the mean, summed; in the unit's square
    double least = 0;
    double greatest = 0;
};

/// The number with up to 15 significant digits.
WString FormatNumber(double number);
/// With as many digits as show three of the spread that it lies in, and no more than it has; as FormatNumber where the
/// spread is 0.
WString FormatWithin(double number, double spread);
