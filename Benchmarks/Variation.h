#pragma once

#include "Cases.h"

struct Variable
{
    std::string name;
    double value;
};

/// The variables of every contender: those of the cases' own expressions and 1,000 for their variants.
std::vector<Variable> MakeVariables();

/// The case, followed by 1,000 different ones of the same shape, with other numbers, variables and texts: the same ones
/// each time. Their expected value is that of the case, and so right only where it does not depend on these.
std::vector<Case> MakeVariants(const Case& testCase);
