#include "Cases.h"

#include <cmath>

std::string MakeSeries(std::size_t count, const std::string& separator)
{
    std::string text = "1";
    for (std::size_t i = 2; i <= count; ++i)
        text += separator + std::to_string(i);
    return text;
}

std::string MakeNested(std::size_t levels, const std::string& addend)
{
    std::string text = std::string(levels, '(') + '1';
    for (std::size_t i = 0; i < levels; ++i)
        text += addend + ')';
    return text;
}

std::vector<Case> MakeCases()
{
    constexpr double a = variableA;
    constexpr double b = variableB;
    constexpr double c = variableC;
    constexpr double d = variableD;
    // Tcl divides whole numbers into whole numbers, and marks its variables. muParser has no operators on texts.
    return {
        {.name = "product", .expected = 7.0, .evaluator = "1+2*3"},
        {.name = "quotient", .expected = 20.5, .evaluator = "10+5*2+2/4", .tcl = "10+5*2+2/4.0"},
        {.name = "groups",
            .expected = 3.0 * -1 / 11 - 7 * 8 + 9,
            .evaluator = "(1+2)*(3-4)/(5+6)-7*8+9",
            .tcl = "(1+2)*(3-4)/(5.0+6)-7*8+9"},
        {.name = "variables", .expected = a + b * c - d / 2, .evaluator = "a+b*c-d/2", .tcl = "$a+$b*$c-$d/2"},
        {.name = "functions",
            .expected = std::sqrt(2) + std::sin(0.5) * std::cos(0.25),
            .evaluator = "sqrt(2)+sin(0.5)*cos(0.25)"},
        {.name = "max and min", .expected = b + c, .evaluator = "max(a,b)+min(c,d)", .tcl = "max($a,$b)+min($c,$d)"},
        {.name = "comparison", .expected = 1.0, .evaluator = "a*3<6000", .tcl = "$a*3<6000"},
        {.name = "powers", .expected = 512.0, .evaluator = "2^3^2", .tcl = "2.0**3**2"},
        {.name = "literals",
            .expected = 0.1 + 0.25 + 1.5e3 * 2.25e-2 + 12345.678901234,
            .evaluator = "0.1+0.25+1.5e3*2.25e-2+12345.678901234"},
        {.name = "logic",
            .expected = 1.0,
            .evaluator = "(a>1 and b<5) or c=3",
            .muParser = "(a>1 && b<5) || c==3",
            .lua = "(a>1 and b<5) or c==3",
            .tcl = "($a>1 && $b<5) || $c==3"},
        {.name = "equal texts",
            .expected = 1.0,
            .evaluator = R"("ready" = "ready")",
            .muParser = "",
            .lua = R"("ready" == "ready")",
            .tcl = R"("ready" eq "ready")"},
        {.name = "short text",
            .expected = "Sample A7",
            .evaluator = R"("Sample " & "A7")",
            .muParser = "",
            .lua = R"("Sample " .. "A7")",
            .tcl = R"([string cat "Sample " "A7"])"},
        {.name = "long text",
            .expected = "Waiting for the sample carrier",
            .evaluator = R"("Waiting for the " & "sample carrier")",
            .muParser = "",
            .lua = R"("Waiting for the " .. "sample carrier")",
            .tcl = R"([string cat "Waiting for the " "sample carrier"])"},
        {.name = "30 parentheses", .expected = 1.0, .evaluator = MakeNested(30, "")},
        {.name = "30 nested sums", .expected = 31.0, .evaluator = MakeNested(30, "+1")},
        {.name = "sum of 200", .expected = 20100.0, .evaluator = MakeSeries(200, "+")},
        {.name = "one variable", .expected = a, .evaluator = "a", .tcl = "$a"},
        {.name = "one number", .expected = 7.0, .evaluator = "7"},
        {.name = "half", .expected = 0.5, .evaluator = "1/2", .tcl = "1/2.0"},
        {.name = "error", .expected = "Divide by zero", .evaluator = "1/0", .muParser = "", .lua = "", .tcl = ""},
        {.name = "tested error", .expected = 1.0, .evaluator = "IsErr(1/0)", .muParser = "", .lua = "", .tcl = ""},
    };
}
