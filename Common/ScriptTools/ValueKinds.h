#pragma once

#include "EEToken.h"

#include <string_view>

/// What an operand may be, as bits. A text is a numeric one where it serves as a number too.
namespace ValueKinds {
constexpr unsigned int Number = 1;
constexpr unsigned int Boolean = 2;
constexpr unsigned int NumericText = 4;
constexpr unsigned int OtherText = 8;
constexpr unsigned int Error = 16; // also what has no value, such as a missing variable
constexpr unsigned int Text = NumericText | OtherText;
constexpr unsigned int Numeric = Number | NumericText;
constexpr unsigned int Valued = Number | Boolean | Text;
constexpr unsigned int Any = Valued | Error;

/// The one that a token is.
unsigned int Of(const EEToken& token);
/// A token of the first of these kinds, such as they are most often.
EEToken MakeSample(unsigned int kinds, int position);
} // namespace ValueKinds

/// What an operator takes and gives. Of two operands that are compared for equality, both are texts or both become
/// numbers, whatever `takes` says.
struct OperatorRule
{
    unsigned int takes;
    unsigned int gives;
    bool isComparison;
    bool isOrder;
};
OperatorRule GetOperatorRule(std::wstring_view name);

/// How a function takes its arguments.
enum class FunctionManner
{
    Strict,   // each must hold a value; what it gives depends on nothing else
    Testing,  // an error may be looked at, or handed on
    Choosing, // IF
    Reading,  // what it gives depends on the instrument, on files, time or chance
    Unknown   // of another plug-in
};

struct FunctionRule
{
    const wchar_t* name; // in lower case
    FunctionManner manner;
    unsigned int gives; // besides errors
    unsigned int takes; // each argument
};

class EEFunction;
FunctionRule GetFunctionRule(const EEFunction& function);
