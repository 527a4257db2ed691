#include "Growth.h"

#include "Check.h"
#include "Measure.h"

#include <cstdio>

namespace {
struct Shape
{
    const char* name;
    std::vector<std::size_t> sizes;
    std::string (*make)(std::size_t size);
    Value (*expect)(std::size_t size);
};

Value ExpectSum(std::size_t size)
{
    return static_cast<double>(size) * static_cast<double>(size + 1) / 2;
}

const Shape shapes_lc[] = {
    {"sum", {1000, 10000, 100000}, [](std::size_t size) { return MakeSeries(size, "+"); }, ExpectSum},
    {"parentheses", {1000, 10000, 30000}, [](std::size_t size) { return MakeNested(size, ""); },
        [](std::size_t) { return Value(1.0); }},
    {"arguments of `Sum`", {1000, 10000, 100000}, [](std::size_t size) { return "Sum(" + MakeSeries(size, ",") + ")"; },
        ExpectSum},
    {"joined texts", {1000, 10000, 100000}, [](std::size_t size) { return '"' + MakeSeries(size, R"("&")") + '"'; },
        [](std::size_t size) { return Value(MakeSeries(size, "")); }},
};

void PrintShape(const Shape& shape)
{
    Texts texts;
    for (const std::size_t size : shape.sizes)
        texts.push_back(shape.make(size));
    const auto contender = MakeEvaluator(texts);

    std::vector<Entry> entries;
    for (std::size_t text = 0; text < texts.size(); ++text) {
        contender->Evaluate(text);
        Check(shape.name, contender->GetValue(), shape.expect(shape.sizes[text]));
        entries.push_back({contender.get(), text, text + 1});
    }

    const std::vector<Costs> costs = Measure(entries);
    for (std::size_t text = 0; text < texts.size(); ++text) {
        const std::size_t size = shape.sizes[text];
        const double time = GetMedian(costs[text].times);
        std::printf("| %s | %zu | %.1f | %.2f | %.6g |\n", shape.name, size, time / static_cast<double>(size),
            time / 1e6, costs[text].allocations);
    }
    std::fflush(stdout);
}
} // namespace

void PrintGrowth()
{
    std::puts("| growth | terms | ns a term | ms | allocations |\n|---|--:|--:|--:|--:|");
    for (const Shape& shape : shapes_lc)
        PrintShape(shape);
}
