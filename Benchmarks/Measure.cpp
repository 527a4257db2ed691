#include "Measure.h"

#include "Allocations.h"

#include <algorithm>
#include <ctime>
#include <random>

namespace {
constexpr std::size_t roundCount_lc = 51;
constexpr double turn_lc = 2e6; // ns

double GetProcessorTime()
{
    std::timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

struct Cost
{
    double nanoseconds;
    double allocations;
};

/// Evaluates so many texts of the entry, and returns the mean cost.
Cost TakeTurn(const Entry& entry, std::size_t count)
{
    static std::mt19937 random;
    std::vector<std::size_t> texts(count);
    for (std::size_t& text : texts)
        text = entry.first + random() % (entry.end - entry.first);

    const unsigned long allocations = GetAllocationCount();
    const double start = GetProcessorTime();
    for (const std::size_t text : texts)
        entry.contender->Evaluate(text);
    const double time = GetProcessorTime() - start;
    return {time / static_cast<double>(count),
        static_cast<double>(GetAllocationCount() - allocations) / static_cast<double>(count)};
}

/// How many evaluations fill a turn.
std::size_t Calibrate(const Entry& entry)
{
    if (!entry.contender)
        return 0;
    for (std::size_t count = 1;; count *= 2) {
        const double time = TakeTurn(entry, count).nanoseconds;
        if (time * static_cast<double>(count) > turn_lc / 4)
            return std::max<std::size_t>(1, static_cast<std::size_t>(turn_lc / time));
    }
}

} // namespace

double GetMedian(std::vector<double> values)
{
    const auto middle = values.begin() + std::ssize(values) / 2;
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::vector<Costs> Measure(const std::vector<Entry>& entries)
{
    std::vector<std::size_t> counts;
    std::transform(entries.begin(), entries.end(), std::back_inserter(counts), Calibrate);
    std::vector<Costs> costs(entries.size());
    for (std::size_t round = 0; round < roundCount_lc; ++round) {
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (counts[i] == 0)
                continue;
            const Cost cost = TakeTurn(entries[i], counts[i]);
            costs[i].times.push_back(cost.nanoseconds);
            costs[i].allocations += cost.allocations / roundCount_lc;
        }
    }
    return costs;
}
