#include "Items.h"

#include "Check.h"
#include "Measure.h"
#include "Variation.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

namespace {
struct ContenderRow
{
    std::string Case::*expression;
    std::unique_ptr<Contender> (*make)(const Texts& expressions);
};

/// The evaluator, then its peers.
const ContenderRow contenders_lc[] = {
    {&Case::evaluator, MakeEvaluator},
    {&Case::muParser, MakeMuParser},
    {&Case::lua, MakeLua},
    {&Case::tcl, MakeTcl},
};

using Contenders = std::vector<std::unique_ptr<Contender>>; // by row, null where one cannot write the case

Contenders MakeContenders(const std::vector<Case>& variants)
{
    Contenders contenders;
    for (const ContenderRow& row : contenders_lc) {
        Texts texts;
        for (const Case& variant : variants)
            texts.push_back(variant.*row.expression);
        contenders.push_back(texts[0].empty() ? nullptr : row.make(texts));
    }
    return contenders;
}

/// All contenders give the same for each text: what the case expects for its own, and also for the variants where the
/// evaluator is alone.
void CheckAll(const Contenders& contenders, const std::vector<Case>& variants)
{
    const bool isAlone = std::count(contenders.begin(), contenders.end(), nullptr) + 1 == std::ssize(contenders);
    for (std::size_t text = 0; text < variants.size(); ++text) {
        Value expected = variants[text].expected;
        for (std::size_t row = 0; row < contenders.size(); ++row) {
            if (!contenders[row])
                continue;
            contenders[row]->Evaluate(text);
            const Value value = contenders[row]->GetValue();
            if (row == 0 && text > 0 && !isAlone)
                expected = value;
            Check(variants[text].*contenders_lc[row].expression, value, expected);
        }
    }
}

/// The median over the rounds of the evaluator's time as a part of its fastest peer's; prints nothing without a peer.
void PrintRatio(const Costs* costs)
{
    std::vector<double> ratios;
    for (std::size_t round = 0; round < costs[0].times.size(); ++round) {
        double fastest = INFINITY;
        for (std::size_t row = 1; row < std::size(contenders_lc); ++row)
            if (!costs[row].times.empty())
                fastest = std::min(fastest, costs[row].times[round]);
        ratios.push_back(costs[0].times[round] / fastest);
    }
    const double ratio = GetMedian(ratios);
    std::printf(ratio > 0 ? " %.2f |" : " |", ratio);
}

/// Of the contenders on the same texts.
void PrintCosts(const Costs* costs)
{
    for (std::size_t row = 0; row < std::size(contenders_lc); ++row)
        if (costs[row].times.empty())
            std::printf(" |");
        else
            std::printf(" %.0f |", GetMedian(costs[row].times));
    PrintRatio(costs);
    std::printf(" %.4g |", costs[0].allocations);
}
} // namespace

void PrintItems()
{
    std::vector<Contenders> items;
    std::vector<Entry> entries; // by item, by texts, by contender
    const std::vector<Case> cases = MakeCases();
    for (const Case& testCase : cases) {
        const std::vector<Case> variants = MakeVariants(testCase);
        const Contenders& contenders = items.emplace_back(MakeContenders(variants));
        CheckAll(contenders, variants);
        for (const auto& contender : contenders)
            entries.push_back({contender.get(), 0, 1});
        for (const auto& contender : contenders)
            entries.push_back({contender.get(), 1, variants.size()});
    }
    const std::vector<Costs> costs = Measure(entries);

    std::puts("| item | one text: ours | muParser | Lua | Tcl | ratio | allocations "
              "| 1,000 texts: ours | muParser | Lua | Tcl | ratio | allocations |\n"
              "|---|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|--:|");
    const Costs* next = costs.data();
    for (const Case& testCase : cases) {
        std::printf("| %s |", testCase.name.c_str());
        for (int texts = 0; texts < 2; ++texts, next += std::size(contenders_lc))
            PrintCosts(next);
        std::puts("");
    }
}
