#pragma once

#include "ExpressionEvaluatorException.h"

/// A variable that could not be resolved was used (code 48).
class EE_API EEMissingVariableException : public ExpressionEvaluatorException
{
public:
    EEMissingVariableException(const WString& name, int position);

    const WString& GetVariableName() const noexcept { return variableName; }

private:
    WString variableName;
};

/// The name behind "Missing variable: ", and the reverse; both leave a text alone that already has the wanted form.
EE_API WString GenerateMissingVariableMessage(const WString& name);
EE_API WString PruneVariableName(const WString& name);
