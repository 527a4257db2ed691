#pragma once

#include "AbstractValue.h"
#include "FoundList.h"

#include <span>
#include <string_view>

/// Finds texts that are taken for hexadecimal numbers without looking like ones: "abc" is 2748.
class HexadecimalTexts
{
public:
    explicit HexadecimalTexts(FoundList& found) noexcept : found(found) {}

    /// The operands of an operator that gives `value`.
    void Look(std::wstring_view operation, const OperatorRule& rule, std::span<const AbstractValue> operands,
        const AbstractValue& value);
    /// Values that are all read as numbers.
    void LookAtNumbers(std::span<const AbstractValue> values);

private:
    FoundList& found;
};
