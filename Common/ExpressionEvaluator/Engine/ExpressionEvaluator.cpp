#include "ExpressionEvaluator.h"

#include "Commands/CommandBase.h"
#include "ExpressionEvaluatorException.h"
#include "Instrument/System.h"
#include "NameCharacters.h"
#include "Saturate.h"

#include <utility>

namespace {
constexpr int variableBuckets = 33;

/// Returns the value of a successful evaluation; throws the recorded exit code of a failed one.
template <typename T>
T OrThrow(bool succeeded, T& value, const ExitCode& code)
{
    if (!succeeded)
        CheckAndThrowExitCode(code);
    return std::move(value);
}
} // namespace

ExpressionEvaluator::ExpressionEvaluator(CommandBase* command, unsigned int flags)
    : validChars(NameCharacters::Default()),
      environment(command ? command->GetEnvironment() : Environment()),
      hasEnvironment(command != nullptr),
      flags(flags)
{}

ExpressionEvaluator::ExpressionEvaluator(
    bool useEnvironment, const Environment& environment, EETokenMap* map, const WString& validChars, unsigned int flags)
    : validChars(std::make_shared<const NameCharacters>(validChars)),
      map(map),
      environment(environment),
      hasEnvironment(useEnvironment),
      flags(flags)
{}

ExpressionEvaluator::ExpressionEvaluator(const ExpressionEvaluator* outer)
    : validChars(outer->validChars),
      map(outer->map),
      environment(outer->environment),
      hasEnvironment(outer->hasEnvironment),
      flags(outer->flags),
      callDepth(outer->callDepth + 1)
{}

ExpressionEvaluator::~ExpressionEvaluator() = default;

void ExpressionEvaluator::Clear()
{
    errorPosition = 0;
    expressionStart = nullptr;
    if (ownMap)
        ownMap->Clear();
    else
        map = nullptr;
    validChars = NameCharacters::Default();
    variableTrace.Clear();
}

void ExpressionEvaluator::SetValidChars(const wchar_t* chars)
{
    validChars = NameCharacters::FromUserSet(chars);
}

EETokenMap& ExpressionEvaluator::GetOrMakeMap()
{
    if (!map) {
        ownMap = std::make_unique<EETokenMap>(variableBuckets);
        map = ownMap.get();
    }
    return *map;
}

void ExpressionEvaluator::SetVariable(const WString& name, EEToken& value)
{
    GetOrMakeMap().SetVariable(name.ToCString(), value);
}

void ExpressionEvaluator::SetVariable(const WString& name, double value)
{
    GetOrMakeMap().SetVariable(name.ToCString(), value);
}

void ExpressionEvaluator::SetVariable(const WString& name, bool value)
{
    GetOrMakeMap().SetVariable(name.ToCString(), value);
}

void ExpressionEvaluator::SetVariable(const WString& name, const WString& value)
{
    GetOrMakeMap().SetVariable(name.ToCString(), value.ToCString());
}

void ExpressionEvaluator::AddVariables(EETokenMap& other)
{
    GetOrMakeMap().AddVariables(other);
}

void ExpressionEvaluator::SetVariableMap(EETokenMap* newMap)
{
    ownMap.reset();
    map = newMap;
}

bool ExpressionEvaluator::TryEvaluate(const WString& expression, EEToken& result)
{
    EETokenStack postfix;
    missingVariable.Clear();
    errorMessage.Clear();
    errorCode = ExitCode();
    errorPosition = 0;

    const bool logging = eeLog_gb.IsEnabled();
    if (logging)
        eeLog_gb.DoWriteLine(L"\n->Expression: " + expression);
    const bool converted = Convert(expression.ToCString(), postfix);
    if (logging)
        eeLog_gb.DoWriteLine(
            (converted ? L" Posfix stack: " : L" Infix2Posfix failure, stack: ") + postfix.ToString(true));
    return converted && EvaluatePostfixExpr(result, postfix);
}

/// A number or boolean; the given error when the value cannot be cast to it.
template <typename Value>
bool ExpressionEvaluator::TryEvaluateAs(const WString& expression, Value& result, const EvaluatorError& error)
{
    EEToken token;
    if (!TryEvaluate(expression, token))
        return false;
    if (token.TryCast(result))
        return true;
    ErrMsg(ExpressionEvaluatorException(error, 0));
    return false;
}

bool ExpressionEvaluator::TryEvaluateDouble(const WString& expression, double& result)
{
    return TryEvaluateAs(expression, result, Errors::NoDouble);
}

bool ExpressionEvaluator::TryEvaluateInt(const WString& expression, int& result)
{
    double number = 0;
    if (!TryEvaluateAs(expression, number, Errors::NoInt))
        return false;
    result = Saturate<int>(number);
    return true;
}

bool ExpressionEvaluator::TryEvaluateBool(const WString& expression, bool& result)
{
    return TryEvaluateAs(expression, result, Errors::NoBool);
}

bool ExpressionEvaluator::TryEvaluateString(const WString& expression, WString& result)
{
    EEToken token;
    if (!TryEvaluate(expression, token))
        return false;
    result = token.ToString();
    return true;
}

EEToken ExpressionEvaluator::Evaluate(const WString& expression)
{
    EEToken result;
    return OrThrow(TryEvaluate(expression, result), result, errorCode);
}

double ExpressionEvaluator::EvaluateDouble(const WString& expression)
{
    double result = 0;
    return OrThrow(TryEvaluateDouble(expression, result), result, errorCode);
}

int ExpressionEvaluator::EvaluateInt(const WString& expression)
{
    int result = 0;
    return OrThrow(TryEvaluateInt(expression, result), result, errorCode);
}

bool ExpressionEvaluator::EvaluateBool(const WString& expression)
{
    bool result = false;
    return OrThrow(TryEvaluateBool(expression, result), result, errorCode);
}

WString ExpressionEvaluator::EvaluateString(const WString& expression)
{
    WString result;
    return OrThrow(TryEvaluateString(expression, result), result, errorCode);
}

bool ExpressionEvaluator::TryGetErrorMessage(ExitCode& code, WString& message, int* position) const
{
    if (errorMessage.IsEmpty())
        return false;
    message = errorMessage;
    code = errorCode;
    if (position)
        *position = errorPosition;
    return true;
}

bool ExpressionEvaluator::TryGetErrorMessage(ExitCode& code, WString& message, WString& marker) const
{
    if (errorMessage.IsEmpty() && !errorCode.IsError())
        return false;
    code = errorCode;
    message = errorMessage;
    if (message.IsEmpty())
        message = WString::Format(L"NA - Missing error message - ExitCode: %s", errorCode.ToCString());
    marker = WString(errorPosition > 1 ? static_cast<std::size_t>(errorPosition - 1) : 0, L' ');
    marker += L'^';
    return true;
}

bool ExpressionEvaluator::TryGetMissingVariableName(WString& name) const
{
    name = missingVariable;
    return !name.IsEmpty();
}

void ExpressionEvaluator::ErrMsg(const ExitCode& code, int position, const wchar_t* message)
{
    if (errorCode.IsError())
        return;
    errorCode = code;
    errorPosition = position;
    errorMessage = message;
    if (errorMessage.IsEmpty())
        errorMessage = code.ToString();
}

void ExpressionEvaluator::ErrMsg(unsigned int number, const wchar_t* at, const wchar_t* message)
{
    ErrMsg(ExitCode(0, evaluatorModule, number), static_cast<int>(at - expressionStart), message);
}

void ExpressionEvaluator::ErrMsg(const ExpressionEvaluatorException& exception)
{
    ErrMsg(
        ExitCode(0, evaluatorModule, exception.GetCode()), exception.GetPosition(), exception.GetMessage().ToCString());
}

bool ExpressionEvaluator::Fail(const EvaluatorError& error, const wchar_t* at)
{
    ErrMsg(error.number, at, error.message);
    return false;
}

bool ExpressionEvaluator::IsLogging() const noexcept
{
    return eeLog_gb.IsEnabled() || (flags & EvaluatorFlags::traceVariables) != 0;
}

void ExpressionEvaluator::LogVariable(const wchar_t* prefix, const WString& name, const EEToken& value)
{
    WString line(prefix);
    line += name;
    line += L'=';
    line += value.ToString();
    eeLog_gb.DoWriteLine(line);
    if (flags & EvaluatorFlags::traceVariables)
        variableTrace.AppendWithSeparator(line, L"\n");
}

double GetRandomNumber()
{
    return System::random.Next();
}
