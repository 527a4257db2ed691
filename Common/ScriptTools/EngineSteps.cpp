#include "EngineSteps.h"

#include <limits>

static constexpr unsigned int unknownCode_lc = std::numeric_limits<unsigned int>::max();

bool EngineSteps::IsUnknown(const EEToken& result) noexcept
{
    return result.GetDataType() == DT_ERR && result.GetErrorCode() == unknownCode_lc;
}

AbstractValue EngineSteps::MakeUnknown(int position)
{
    AbstractValue value;
    value.token.SetPosition(position);
    value.token.SetException(unknownCode_lc, WString());
    return value;
}

static void Put(EETokenStack& postfix, const AbstractValue& operand)
{
    postfix.Put(operand.isKnown ? operand.token : EngineSteps::MakeUnknown(operand.GetPosition()).token);
}

bool EngineSteps::Apply(const EEToken& operation, std::span<const AbstractValue> operands, EEToken& result)
{
    EETokenStack postfix;
    for (const AbstractValue& operand : operands)
        Put(postfix, operand);
    postfix.Put(operation);
    int terminator = TT_END;
    return evaluator.EvaluatePostfixSubExpr(result, postfix, &terminator);
}

bool EngineSteps::Call(const EEToken& function, int position, std::span<const AbstractValue> arguments, EEToken& result)
{
    EETokenStack postfix;
    postfix.Put(EEToken(TT_PRMLIST, L'|', position));
    for (const AbstractValue& argument : arguments) {
        if (&argument != &arguments.front())
            postfix.Put(EEToken(TT_PRMSEP, L',', 0));
        Put(postfix, argument);
    }
    postfix.Put(function);
    int terminator = TT_END;
    return evaluator.EvaluatePostfixSubExpr(result, postfix, &terminator);
}
