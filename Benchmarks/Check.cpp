#include "Check.h"

#include <cmath>
#include <cstdlib>
#include <iostream>

static bool IsNear(const Value& value, const Value& expected)
{
    const auto* number = std::get_if<double>(&value);
    const auto* wanted = std::get_if<double>(&expected);
    return number && wanted ? std::fabs(*number - *wanted) <= 1e-12 * std::fabs(*wanted) : value == expected;
}

void Check(const std::string& name, const Value& value, const Value& expected)
{
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
