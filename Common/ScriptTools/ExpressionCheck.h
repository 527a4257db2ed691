#pragma once

#include "Text/SimilarName.h"
#include "Text/WString.h"

#include <cstddef>
#include <functional>
#include <string_view>
#include <vector>

/// A finding within an expression; the places count from its start, in characters. The start is where the caret of a
/// run stands.
struct ExpressionFinding
{
    bool isError = false;      // the expression, run by itself, fails with this message at this place
    const wchar_t* code = L""; // of ExpressionFindings.h
    std::size_t start = 0;
    std::size_t end = 0;
    WString message;
    WString suggestion{}; // may be empty
};

/// What is known of the variables where an expression stands.
using IsVariableKnown = std::function<bool(const WString& name)>;
/// Offers the names of all of them.
using OfferVariables = std::function<void(SimilarName& similar)>;

/// What an expression is for.
enum class ExpressionUse
{
    Value,
    Condition, // its value becomes true or false, and is expected to be now one and now the other
    Assertion  // its value becomes true or false, and is expected to be true
};

/// Reads an expression without evaluating what depends on the instrument or on variables. Appends what it finds, in the
/// order of the places.
void CheckExpression(std::wstring_view expression, ExpressionUse use, const IsVariableKnown& isKnown,
    std::vector<ExpressionFinding>& out, const OfferVariables& offer = nullptr);
