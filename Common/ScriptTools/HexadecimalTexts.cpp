#include "HexadecimalTexts.h"

#include "ExpressionFindings.h"
#include "Text/CharacterCase.h"

#include <algorithm>

namespace {
/// A text that is a number only by its letters. One that begins with "0x" is meant to be.
bool IsHexadecimal(const AbstractValue& value)
{
    const WString& text = value.token.GetText();
    double number = 0;
    return value.isKnown && value.kinds == ValueKinds::NumericText && !text.TryParseDouble(number) &&
        !text.StartsWith(L"0x", true);
}

WString Describe(const AbstractValue& value)
{
    double number = 0;
    value.token.TryCast(number);
    return WString::Format(L"\"%s\" is read as the hexadecimal number %.0f", value.token.GetText(), number);
}

bool IsTrue(const AbstractValue& value)
{
    bool truth = false;
    return value.isKnown && value.token.TryGetValue(&truth) && truth;
}
} // namespace

void HexadecimalTexts::LookAtNumbers(std::span<const AbstractValue> values)
{
    for (const AbstractValue& value : values)
        if (IsHexadecimal(value))
            found.Warn(Findings::HexadecimalText, value.GetPosition(), Describe(value));
}

void HexadecimalTexts::Look(std::wstring_view operation, const OperatorRule& rule,
    std::span<const AbstractValue> operands, const AbstractValue& value)
{
    if (rule.takes != ValueKinds::Numeric && operation != L"=" && operation != L"<>")
        return;
    const bool isComparison = rule.isComparison && std::ranges::any_of(operands, IsHexadecimal) &&
        std::ranges::all_of(operands, [](const AbstractValue& operand) { return !operand.MayBe(~ValueKinds::Text); });
    const bool isEquality = rule.isComparison && !rule.isOrder;
    if (!isComparison) {
        const bool isNumber = std::ranges::any_of(operands,
            [](const AbstractValue& operand) { return !operand.MayBe(~(ValueKinds::Number | ValueKinds::Error)); });
        if (!isEquality || isNumber)
            LookAtNumbers(operands);
        return;
    }
    const WString& left = operands[0].token.GetText();
    const WString& right = operands[1].token.GetText();
    const bool isMisled = IsTrue(value) == (operation == L"=") && !EqualsIgnoreCase(left.View(), right.View());
    if (!isEquality || (value.isKnown && isMisled))
        found.Warn(Findings::HexadecimalCompared, operands[0].GetPosition(),
            L"Texts that are read as hexadecimal numbers are compared");
}
