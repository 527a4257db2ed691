#include "Allocations.h"
#include "Contender.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdlib>
#include <iostream>

namespace {
struct ContenderRow
{
    const char* name;
    std::string Case::*expression;
    std::unique_ptr<Contender> (*make)(const std::string& expression);
};

const ContenderRow contenders_lc[] = {
    {"Evaluator", &Case::evaluator, MakeEvaluator},
    {"muParser", &Case::muParser, MakeMuParser},
    {"Lua", &Case::lua, MakeLua},
    {"Tcl", &Case::tcl, MakeTcl},
};

bool IsNear(const Value& value, const Value& expected)
{
    const auto* number = std::get_if<double>(&value);
    const auto* wanted = std::get_if<double>(&expected);
    return number && wanted ? std::fabs(*number - *wanted) <= 1e-12 * std::fabs(*wanted) : value == expected;
}

/// A wrong value, or an error, ends the program: its time would mean nothing. Also fills what is kept between
/// evaluations.
void Check(const std::string& name, Contender& contender, const Value& expected)
{
    contender.Evaluate();
    const Value value = contender.GetValue();
    if (IsNear(value, expected))
        return;
    const auto print = [](const auto& content) { std::cerr << '"' << content << '"'; };
    std::cerr << name << " gives ";
    std::visit(print, value);
    std::cerr << " instead of ";
    std::visit(print, expected);
    std::cerr << '\n';
    std::exit(EXIT_FAILURE);
}

void Measure(benchmark::State& state, Contender& contender)
{
    const unsigned long before = GetAllocationCount();
    for (auto _ : state)
        contender.Evaluate();
    state.counters["allocations"] =
        benchmark::Counter(static_cast<double>(GetAllocationCount() - before), benchmark::Counter::kAvgIterations);
}

void Register(const Case& testCase, const ContenderRow& row)
{
    const std::string& expression = testCase.*row.expression;
    if (expression.empty())
        return;
    const std::string name = testCase.name + "/" + row.name;
    const std::shared_ptr<Contender> contender = row.make(expression);
    Check(name, *contender, testCase.expected);
    benchmark::RegisterBenchmark(name.c_str(), [contender](benchmark::State& state) { Measure(state, *contender); });
}
} // namespace

int main(int argc, char** argv) // NOLINT(bugprone-exception-escape): an exception may end it
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return EXIT_FAILURE;
    for (const Case& testCase : MakeCases())
        for (const ContenderRow& row : contenders_lc)
            Register(testCase, row);
    benchmark::RunSpecifiedBenchmarks();
    return EXIT_SUCCESS;
}
