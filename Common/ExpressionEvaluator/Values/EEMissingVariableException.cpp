#include "EEMissingVariableException.h"

EEMissingVariableException::EEMissingVariableException(const WString& name, int position)
    : ExpressionEvaluatorException(Errors::MissingVariable.number, GenerateMissingVariableMessage(name), position),
      variableName(PruneVariableName(name))
{}

namespace {
bool HasPrefix(const WString& name)
{
    return name.StartsWith(Errors::MissingVariable.message, false);
}
} // namespace

WString GenerateMissingVariableMessage(const WString& name)
{
    return HasPrefix(name) ? name : Errors::MissingVariable.message + name;
}

WString PruneVariableName(const WString& name)
{
    const WString prefix = Errors::MissingVariable.message;
    return HasPrefix(name) ? name.Substring(static_cast<unsigned int>(prefix.Length())) : name;
}
