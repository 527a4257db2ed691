#pragma once

#include "EETokenStack.h"
#include "EvaluatorErrors.h"
#include "ExpressionEvaluatorException.h"

/// What the functions share in taking their arguments. Each Pop takes the next argument from left to right and throws
/// that argument's own error when it holds no value, or is of a kind that does not convert.
namespace FunctionArguments {
/// Throws `tooFew` or `tooMany`, at the last argument, unless `min` to `max` arguments were given.
void CheckCount(
    const EETokenStack& arguments, int min, int max, const EvaluatorError& tooFew, const EvaluatorError& tooMany);
inline void CheckCount(const EETokenStack& arguments, int min, int max, const EvaluatorError& error)
{
    CheckCount(arguments, min, max, error, error);
}

// The next two throw the abort that is requested: there may be millions of arguments, and texts may be long.

/// A number.
double PopNumber(EETokenStack& arguments);
/// A text; numbers and booleans are converted.
WString PopText(EETokenStack& arguments);

/// A number as the nearest 32-bit integer toward zero (see Saturate).
int PopInt32(EETokenStack& arguments);
/// A text; numbers and booleans are refused.
WString PopStrictText(EETokenStack& arguments);
/// A boolean, or the default when there are no arguments left.
bool PopBoolOr(EETokenStack& arguments, bool defaultValue);
/// A separator of exactly one character, or a comma when there are no arguments left; `error` is thrown for another
/// length.
wchar_t PopSeparator(EETokenStack& arguments, const EvaluatorError& error);

/// Makes a copy of an argument the result. A value takes the place of the call, an error keeps pointing at its origin.
void SetArgument(EEToken& result, const EEToken& argument);
/// Makes the next argument the result, as the default for what does not exist; throws `notFound` when there is none
/// left.
void PopDefault(EEToken& result, EETokenStack& arguments, const EvaluatorError& notFound);
} // namespace FunctionArguments
