#include "FunctionArguments.h"

#include "Saturate.h"
#include "Text/Abort.h"

namespace FunctionArguments {
void CheckCount(
    const EETokenStack& arguments, int min, int max, const EvaluatorError& tooFew, const EvaluatorError& tooMany)
{
    if (arguments.Count() < min)
        throw ExpressionEvaluatorException(tooFew, arguments.GetTail().GetPosition());
    if (arguments.Count() > max)
        throw ExpressionEvaluatorException(tooMany, arguments.GetTail().GetPosition());
}

double PopNumber(EETokenStack& arguments)
{
    Abort::ThrowIfRequested();
    return arguments.PopNumber();
}

int PopInt32(EETokenStack& arguments)
{
    return Saturate<int>(arguments.Pop().GetNumber());
}

WString PopText(EETokenStack& arguments)
{
    Abort::ThrowIfRequested();
    return arguments.Pop().GetWString(true);
}

WString PopStrictText(EETokenStack& arguments)
{
    return arguments.Pop().GetWString(false);
}

bool PopBoolOr(EETokenStack& arguments, bool defaultValue)
{
    return arguments.IsEmpty() ? defaultValue : arguments.Pop().GetBool();
}

wchar_t PopSeparator(EETokenStack& arguments, const EvaluatorError& error)
{
    if (arguments.IsEmpty())
        return L',';
    const EEToken& separator = arguments.Pop();
    const WString text = separator.GetWString(false);
    if (text.Length() != 1)
        throw ExpressionEvaluatorException(error, separator.GetPosition());
    return text[0];
}

void SetArgument(EEToken& result, const EEToken& argument)
{
    const int callPosition = result.GetPosition();
    result = argument;
    if (result.IsValued())
        result.SetPosition(callPosition);
}

void PopDefault(EEToken& result, EETokenStack& arguments, const EvaluatorError& notFound)
{
    if (arguments.IsEmpty())
        throw ExpressionEvaluatorException(notFound, -1);
    SetArgument(result, arguments.Pop());
}
} // namespace FunctionArguments
