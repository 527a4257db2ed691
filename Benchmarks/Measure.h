#pragma once

#include "Contender.h"

#include <cstddef>
#include <vector>

/// A contender, null for none, and those of its texts, from `first` to before `end`, that are evaluated in random
/// order.
struct Entry
{
    Contender* contender;
    std::size_t first;
    std::size_t end;
};

/// What one evaluation of an entry took, by round.
struct Costs
{
    std::vector<double> times; // processor time in ns, none without a contender
    double allocations = 0;    // mean of all rounds
};

double GetMedian(std::vector<double> values);

/// Lets the entries take turns in short rounds, so that all meet the same state of the machine: neighbours most of all.
/// Every text must have been evaluated before, so that what is kept between evaluations is there.
std::vector<Costs> Measure(const std::vector<Entry>& entries);
