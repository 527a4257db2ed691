#include "Item.h"

#include "Text/NumberText.h"

#include <limits>

namespace {
bool Refuse(const EvaluatorError& error, int position, Refusal& refusal) noexcept
{
    refusal = {&error, position};
    return false;
}

bool RefuseAsNoValue(const Item& operand, Refusal& refusal) noexcept
{
    refusal = {nullptr, operand.position};
    return false;
}

bool TryReadNumber(std::wstring_view text, double& value) noexcept
{
    using Limits = std::numeric_limits<double>;
    if (TryReadDecimal(text.data(), text.data() + text.size(), value, Limits::lowest(), Limits::max()))
        return true;
    unsigned int hexadecimal = 0;
    if (!TryReadHexadecimal(text, hexadecimal, 0, std::numeric_limits<unsigned int>::max()))
        return false;
    value = hexadecimal;
    return true;
}
} // namespace

bool TryCast(const Item& operand, double& value) noexcept
{
    if (operand.type != TT_OPERAND)
        return false;
    switch (operand.dataType) {
    case DT_BOOL: value = operand.truth ? 1.0 : 0.0; return true;
    case DT_STR: return TryReadNumber(operand.GetText(), value);
    case DT_NUM: value = operand.number; return std::isfinite(value);
    default: return false;
    }
}

bool TryCast(const Item& operand, bool& value) noexcept
{
    if (operand.type != TT_OPERAND)
        return false;
    switch (operand.dataType) {
    case DT_BOOL: value = operand.truth; return true;
    case DT_STR: return TryReadBool(operand.GetText(), value);
    case DT_NUM: value = std::fabs(operand.number) < 10 * std::numeric_limits<double>::epsilon(); return true;
    default: return false;
    }
}

bool TakeOtherNumber(const Item& operand, double& value, Refusal& refusal) noexcept
{
    if (!operand.IsValued())
        return RefuseAsNoValue(operand, refusal);
    switch (operand.dataType) {
    case DT_NUM: return Refuse(std::isnan(operand.number) ? Errors::NotANumber : Errors::NumberInfinite, -1, refusal);
    case DT_BOOL: return Refuse(Errors::BooleanIsNoNumber, operand.position, refusal);
    default: return TryCast(operand, value) || Refuse(Errors::NumberMismatch, operand.position, refusal);
    }
}

bool RefuseTruth(const Item& operand, Refusal& refusal) noexcept
{
    return operand.IsValued() ? Refuse(Errors::BoolMismatch, operand.position, refusal)
                              : RefuseAsNoValue(operand, refusal);
}

std::wstring_view GetValueText(const Item& value, NumberBuffer& buffer)
{
    if (value.dataType == DT_BOOL)
        return value.truth ? L"TRUE" : L"FALSE";
    if (value.dataType != DT_NUM || value.length != 0)
        return value.GetText(); // a literal number keeps the form in which it was written
    return efFtoa(value.number, 15, buffer.text);
}

bool TakeText(const Item& operand, bool converts, NumberBuffer& buffer, std::wstring_view& text, Refusal& refusal)
{
    if (!operand.IsValued())
        return RefuseAsNoValue(operand, refusal);
    const bool isConverted = converts && (operand.dataType == DT_NUM || operand.dataType == DT_BOOL);
    if (operand.dataType != DT_STR && !isConverted)
        return Refuse(Errors::TextMismatch, operand.position, refusal);
    text = GetValueText(operand, buffer);
    return true;
}
