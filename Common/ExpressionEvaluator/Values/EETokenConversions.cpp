#include "EEToken.h"

#include "ExpressionEvaluatorException.h"
#include "Item.h"

#include <cmath>

bool EEToken::IsNumberValid(double value) noexcept
{
    return std::isfinite(value);
}

double EEToken::ValidNumber(double value)
{
    if (std::isinf(value))
        throw ExpressionEvaluatorException(Errors::NumberInfinite, -1);
    if (std::isnan(value))
        throw ExpressionEvaluatorException(Errors::NotANumber, -1);
    return value;
}

bool EEToken::TryGetValue(double* value, bool* hasText) const noexcept
{
    const bool found = type == TT_OPERAND && dataType == DT_NUM;
    if (hasText)
        *hasText = !text.IsEmpty();
    *value = found ? number : 1.0;
    return found;
}

bool EEToken::TryGetValue(bool* value) const noexcept
{
    const bool found = type == TT_OPERAND && dataType == DT_BOOL;
    *value = found && boolValue != 0;
    return found;
}

bool EEToken::TryGetValue(WString& value) const
{
    const bool found = type == TT_OPERAND && dataType == DT_STR;
    if (found)
        value = text;
    else
        value.Clear();
    return found;
}

bool EEToken::TryCast(double& value) const
{
    return ::TryCast(AsItem(), value);
}

bool EEToken::TryCast(bool& value) const
{
    return ::TryCast(AsItem(), value);
}

void EEToken::Throw(const Refusal& refusal) const
{
    if (!refusal.error)
        RethrowError();
    throw ExpressionEvaluatorException(*refusal.error, refusal.position);
}

double EEToken::GetNumber() const
{
    double value = 0;
    if (Refusal refusal; !TakeNumber(AsItem(), value, refusal))
        Throw(refusal);
    return value;
}

double EEToken::ToNumber() const
{
    double value = 0;
    if (TryCast(value))
        return value;
    if (IsValued())
        throw ExpressionEvaluatorException(Errors::ToNumberMismatch, position);
    throw ExpressionEvaluatorException(errorCode, text.ToCString(), this, position);
}

int EEToken::GetInteger(int min, int max) const
{
    // Whole limits, so that what lies between them stays there when it is truncated.
    const double value = GetNumber();
    if (value < min || value > max)
        throw ExpressionEvaluatorException(Errors::ArgumentOutOfRange, position);
    return static_cast<int>(value);
}

bool EEToken::GetBool() const
{
    bool value = false;
    if (Refusal refusal; !TakeTruth(AsItem(), value, refusal))
        Throw(refusal);
    return value;
}

WString EEToken::GetWString(bool convert) const
{
    NumberBuffer buffer;
    std::wstring_view value;
    if (Refusal refusal; !TakeText(AsItem(), convert, buffer, value, refusal))
        Throw(refusal);
    return WString(value);
}
