#include "FunctionArguments.h"
#include "FunctionClasses.h"

#include <cmath>
#include <limits>

using namespace FunctionArguments;

namespace {
/// A boolean word, or a number that is true unless it is zero within a tolerance.
bool TryReadBool(const WString& text, bool& value)
{
    using Limits = std::numeric_limits<double>;
    if (text.TryGetBool(value))
        return true;
    double number;
    if (!text.TryParseDouble(number, Limits::lowest(), Limits::max()))
        return false;
    value = std::fabs(number) >= 1000 * Limits::epsilon();
    return true;
}
} // namespace

// The branch that is not chosen has been evaluated too; whatever error it holds does no harm.
void EEIf::Evaluate(EEToken& result, EETokenStack& arguments)
{
    if (!arguments.Pop().GetBool())
        arguments.Pop();
    SetArgument(result, arguments.Pop());
}

void EENot::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(!arguments.Pop().GetBool());
}

void EEIsNA::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(arguments.Pop().IsNa());
}

void EEIsErr::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result.SetValue(!arguments.Pop().IsValued());
}

void EEDefined::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const EEToken& argument = arguments.Pop();
    if (!argument.IsMissingVariable())
        argument.RethrowError();
    result.SetValue(argument.IsValued());
}

// Unlike IF, a value keeps the place of the argument that it came from.
void EEInitIfNa::Evaluate(EEToken& result, EETokenStack& arguments)
{
    result = arguments.Pop();
    if (result.IsNa())
        result = arguments.Pop();
}

void EEBool::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const EEToken& argument = arguments.Pop();
    bool value;
    if (!TryReadBool(argument.GetWString(true), value))
        throw ExpressionEvaluatorException(Errors::NoBooleanValue, argument.GetPosition());
    result.SetValue(value);
}
