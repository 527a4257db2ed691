#include "EEToken.h"

#include "ExpressionEvaluatorException.h"

#include <cmath>
#include <limits>

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

namespace {
bool TryParseNumber(const WString& text, double& value)
{
    unsigned int hexadecimal = 0;
    if (text.TryParseDouble(value))
        return true;
    if (!text.TryGetHexUInt(hexadecimal, 0, std::numeric_limits<unsigned int>::max()))
        return false;
    value = hexadecimal;
    return true;
}
} // namespace

bool EEToken::TryCast(double& value) const
{
    if (type != TT_OPERAND)
        return false;
    switch (dataType) {
    case DT_BOOL: value = boolValue != 0 ? 1.0 : 0.0; return true;
    case DT_STR: return TryParseNumber(text, value);
    case DT_NUM: value = number; return IsNumberValid(value);
    default: return false;
    }
}

bool EEToken::TryCast(bool& value) const
{
    if (type != TT_OPERAND)
        return false;
    switch (dataType) {
    case DT_BOOL: value = boolValue != 0; return true;
    case DT_STR: return text.TryGetBool(value);
    case DT_NUM: value = std::fabs(number) < 10 * std::numeric_limits<double>::epsilon(); return true;
    default: return false;
    }
}

double EEToken::GetNumber() const
{
    RethrowError();
    if (dataType == DT_NUM)
        return ValidNumber(number);
    if (dataType == DT_BOOL)
        throw ExpressionEvaluatorException(Errors::BooleanIsNoNumber, position);
    double value = 0;
    if (!TryCast(value))
        throw ExpressionEvaluatorException(Errors::NumberMismatch, position);
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
    RethrowError();
    if (dataType != DT_BOOL)
        throw ExpressionEvaluatorException(Errors::BoolMismatch, position);
    return boolValue != 0;
}

WString EEToken::GetWString(bool convert) const
{
    RethrowError();
    if (dataType == DT_STR || (convert && (dataType == DT_NUM || dataType == DT_BOOL)))
        return ToString();
    throw ExpressionEvaluatorException(Errors::TextMismatch, position);
}

void EEToken::AppendText(const WString& more)
{
    if (dataType != DT_STR || type != TT_OPERAND)
        SetValue(GetWString(true));
    text += more;
}
