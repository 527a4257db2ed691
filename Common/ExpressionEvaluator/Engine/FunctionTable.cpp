#include "Commands/PluginLoader.h"
#include "EvaluatorErrors.h"
#include "ExpressionEvaluatorException.h"
#include "ExpressionEvaluatorFunctions.h"

std::atomic<int> EEFunction::liveCount{0};

int GetDebugObjectCountExpressionEvaluator_CExprFn()
{
    return EEFunction::liveCount;
}

EEFunction::EEFunction(const wchar_t* name, int parameterCount)
    : name(name), lowerCaseName(this->name.ToLowerCase()), parameterCount(parameterCount)
{}

void EEFunction::Evaluate(EEToken& result, EETokenStack&)
{
    throw ExpressionEvaluatorException(Errors::WrongEvaluateOverload, result.GetPosition());
}

void EEFunction::Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator*)
{
    Evaluate(result, arguments);
}

EEFunction* EEFunctionTable::FindOrNull(std::wstring_view name) const
{
    return static_cast<EEFunction*>(functions.GetObjectOrNull(name));
}

EEFunction* EEFunctionTable::FindOrNull(const HashedName& name) const
{
    return static_cast<EEFunction*>(functions.GetObjectOrNull(name));
}

bool EEFunctionTable::IsFunction(const wchar_t* name, int* parameterCount) const
{
    const EEFunction* function = FindOrNull(name ? name : L"");
    if (function && parameterCount)
        *parameterCount = function->GetParameterCount();
    return function != nullptr;
}

void EEFunctionTable::Evaluate(
    EEToken& result, const wchar_t* name, EETokenStack& arguments, ExpressionEvaluator* evaluator) const
{
    EEFunction* function = FindOrNull(name ? name : L"");
    if (!function)
        throw ExpressionEvaluatorException(
            Errors::UnknownFunctionInTable.number, WString::Format(Errors::UnknownFunctionInTable.message, name), 0);
    function->Evaluate(result, arguments, evaluator);
}

void EEFunctionTable::GetSupportedFunctions(WStringArray& names) const
{
    names.Clear();
    functions.GetKeys(names);
}

bool EEFunctionTable::AddFn(EEFunction* function)
{
    const std::shared_ptr<EEFunction> owned(function);
    if (!function)
        return false;
    const bool isAdded = functions.Add(function->GetName(), owned);
    PluginLoader::TellFunction(function->GetName(), isAdded);
    return isAdded;
}
