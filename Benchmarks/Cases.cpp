#include "Cases.h"

#include <cmath>

/// 1+2+ ... +count
static std::string Sum(int count)
{
    std::string text = "1";
    for (int i = 2; i <= count; ++i)
        text += "+" + std::to_string(i);
    return text;
}

/// ((1+1)+1), for two levels
static std::string Nested(int levels)
{
    std::string text(static_cast<std::size_t>(levels), '(');
    text += '1';
    for (int i = 0; i < levels; ++i)
        text += "+1)";
    return text;
}

std::vector<Case> MakeCases()
{
    constexpr double a = variableA;
    constexpr double b = variableB;
    constexpr double c = variableC;
    constexpr double d = variableD;
    // Tcl divides whole numbers into whole numbers, and marks its variables.
    return {
        {.name = "Product", .expected = 7.0, .evaluator = "1+2*3"},
        {.name = "Quotient", .expected = 20.5, .evaluator = "10+5*2+2/4", .tcl = "10+5*2+2/4.0"},
        {.name = "Groups",
            .expected = 3.0 * -1 / 11 - 7 * 8 + 9,
            .evaluator = "(1+2)*(3-4)/(5+6)-7*8+9",
            .tcl = "(1+2)*(3-4)/(5.0+6)-7*8+9"},
        {.name = "Variables", .expected = a + b * c - d / 2, .evaluator = "a+b*c-d/2", .tcl = "$a+$b*$c-$d/2"},
        {.name = "Functions",
            .expected = std::sqrt(2) + std::sin(0.5) * std::cos(0.25),
            .evaluator = "sqrt(2)+sin(0.5)*cos(0.25)"},
        {.name = "Comparison", .expected = 1.0, .evaluator = "a*3<6000", .tcl = "$a*3<6000"},
        {.name = "Logic",
            .expected = 1.0,
            .evaluator = "(a>1 and b<5) or c=3",
            .muParser = "(a>1 && b<5) || c==3",
            .lua = "(a>1 and b<5) or c==3",
            .tcl = "($a>1 && $b<5) || $c==3"},
        {.name = "Powers", .expected = 512.0, .evaluator = "2^3^2", .tcl = "2**3**2"},
        {.name = "Literals",
            .expected = 0.1 + 0.25 + 1.5e3 * 2.25e-2 + 12345.678901234,
            .evaluator = "0.1+0.25+1.5e3*2.25e-2+12345.678901234"},
        {.name = "Sum200", .expected = 20100.0, .evaluator = Sum(200)},
        {.name = "Nested30", .expected = 31.0, .evaluator = Nested(30)},
        {.name = "ShortText",
            .expected = "Sample A7",
            .evaluator = R"("Sample " & "A7")",
            .muParser = "",
            .lua = R"("Sample " .. "A7")",
            .tcl = R"([string cat "Sample " "A7"])"},
        {.name = "LongText",
            .expected = "Waiting for the sample carrier",
            .evaluator = R"("Waiting for the " & "sample carrier")",
            .muParser = "",
            .lua = R"("Waiting for the " .. "sample carrier")",
            .tcl = R"([string cat "Waiting for the " "sample carrier"])"},
        {.name = "EqualTexts",
            .expected = 1.0,
            .evaluator = R"("ready" = "ready")",
            .muParser = "",
            .lua = R"("ready" == "ready")",
            .tcl = R"("ready" eq "ready")"},
    };
}
