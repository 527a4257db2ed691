#include "FunctionArguments.h"
#include "FunctionClasses.h"
#include "Saturate.h"

#include <algorithm>
#include <limits>

using namespace FunctionArguments;

namespace {
constexpr unsigned int maxUInt32 = std::numeric_limits<unsigned int>::max();

/// A length or an index; a negative one counts as 0.
unsigned int GetLength(const EEToken& argument)
{
    return static_cast<unsigned int>(std::max(Saturate<int>(argument.GetNumber()), 0));
}

unsigned long long ReadVersion(const EEToken& argument)
{
    unsigned long long version;
    if (!argument.GetWString(true).TryGetVersion(version))
        throw ExpressionEvaluatorException(Errors::InvalidVersion, argument.GetPosition());
    return version;
}
} // namespace

void EELen::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(static_cast<double>(PopText(arguments).Length()));
}

void EELeft::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const WString text = PopText(arguments);
    result.SetValue(text.Left(GetLength(arguments.Pop())));
}

void EERight::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const WString text = PopText(arguments);
    result.SetValue(text.Right(GetLength(arguments.Pop())));
}

void EEMid::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 2, 3, Errors::MidParameters);
    const WString text = PopText(arguments);
    const EEToken& argument = arguments.Pop();
    const unsigned int index = GetLength(argument);
    if (index > text.Length())
        throw ExpressionEvaluatorException(Errors::CharacterIndexOutOfRange, argument.GetPosition());
    const int length = arguments.IsEmpty() ? -1 : std::max(PopInt32(arguments), -1);
    result.SetValue(text.Substring(index, length));
}

void EEIndexOf::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 2, 3, Errors::IndexOfTooFew, Errors::IndexOfTooMany);
    const int start = arguments.Count() == 3 ? PopInt32(arguments) : 0;
    const WString text = PopText(arguments).ToUpperCase();
    const WString find = PopText(arguments).ToUpperCase();
    result.SetValue(static_cast<double>(text.IndexOf(find, start)));
}

void EEStartsWith::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 2, 3, Errors::StartsWithParameters);
    const WString text = PopText(arguments);
    const WString prefix = PopText(arguments);
    result.SetValue(text.StartsWith(prefix, PopBoolOr(arguments, true)));
}

void EEEndsWith::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 2, 3, Errors::EndsWithParameters);
    const WString text = PopText(arguments);
    const WString suffix = PopText(arguments);
    result.SetValue(text.EndsWith(suffix, PopBoolOr(arguments, true)));
}

void EEUCase::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(PopText(arguments).ToUpperCase());
}

void EELCase::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(PopText(arguments).ToLowerCase());
}

void EEToString::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const EEToken& argument = arguments.Pop();
    argument.RethrowError();
    result.SetValue(argument.ToString());
}

void EEStrCat::Evaluate(EEToken& result, EETokenStack& arguments)
{
    WString text;
    while (!arguments.IsEmpty())
        text += PopText(arguments);
    result.SetValue(text);
}

void EEStrReplace::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 3, 4, Errors::StrReplaceTooFew, Errors::StrReplaceTooMany);
    WString text = PopText(arguments);
    const WString find = PopText(arguments);
    const WString replaceWith = PopText(arguments);
    text.Replace(find, replaceWith, PopBoolOr(arguments, true));
    result.SetValue(text);
}

void EEVal::Evaluate(EEToken& result, EETokenStack& arguments)
{
    double number;
    if (!arguments.Pop().TryCast(number))
        throw ExpressionEvaluatorException(Errors::ValNoNumber, -1);
    result.SetValue(number);
}

void EEToHex::Evaluate(EEToken& result, EETokenStack& arguments)
{
    CheckCount(arguments, 1, 2, Errors::ToHexParameters);
    const EEToken& argument = arguments.Pop();
    const double number = argument.GetNumber();
    if (number < 0 || number > maxUInt32)
        throw ExpressionEvaluatorException(Errors::ArgumentOutOfRange, argument.GetPosition());
    WString format = L"%x";
    if (!arguments.IsEmpty())
        format = WString::Format(L"%%0%dx", arguments.Pop().GetInteger(2, 8));
    result.SetValue(WString::Format(format.ToCString(), Saturate<unsigned int>(number)));
}

void EEFromHex::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const EEToken& argument = arguments.Pop();
    unsigned int number;
    if (!argument.GetWString(false).TryGetHexUInt(number, 0, maxUInt32))
        throw ExpressionEvaluatorException(Errors::InvalidHexadecimal, argument.GetPosition());
    result.SetValue(static_cast<double>(number));
}

void EEMatches::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const WString text = PopText(arguments);
    const WString pattern = PopStrictText(arguments);
    result.SetValue(text.IsWildcardMatch(pattern.ToCString(), true));
}

void EEVersionCompare::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const EEToken& argument = arguments.Pop();
    result.SetPosition(argument.GetPosition());
    const unsigned long long first = ReadVersion(argument);
    const unsigned long long second = ReadVersion(arguments.Pop());
    result.SetValue(first < second ? -1.0 : first > second ? 1.0 : 0.0);
}
