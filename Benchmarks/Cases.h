#pragma once

#include <string>
#include <variant>
#include <vector>

/// What an expression gives. A truth value counts as 1 or 0, since not every contender has a type for it.
using Value = std::variant<double, std::string>;

/// The values of the variables that expressions may use.
constexpr double variableA = 2.5;
constexpr double variableB = 3.5;
constexpr double variableC = 4.5;
constexpr double variableD = 5.5;

/// An expression as each contender writes it, empty where one cannot; unless given, it is written as the evaluator
/// takes it.
struct Case
{
    std::string name;
    Value expected;
    std::string evaluator;
    std::string muParser = evaluator;
    std::string lua = evaluator;
    std::string tcl = evaluator;
};

std::vector<Case> MakeCases();

/// 1+2+3, for three numbers and a plus
std::string MakeSeries(std::size_t count, const std::string& separator);
/// ((1+1)+1), for two levels and +1
std::string MakeNested(std::size_t levels, const std::string& addend);
