#include "ExpressionEvaluator.h"

#include "Commands/CommandBase.h"
#include "Evaluation.h"
#include "ExpressionEvaluatorException.h"
#include "Instrument/System.h"
#include "NameCharacters.h"
#include "Saturate.h"
#include "Text/HostError.h"
#include "WorkspaceUse.h"

#include <new>
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

ExpressionEvaluator::~ExpressionEvaluator() = default;

void ExpressionEvaluator::Clear()
{
    record.position = 0;
    record.expressionStart = nullptr;
    if (ownMap)
        ownMap->Clear();
    else
        map = nullptr;
    validChars = NameCharacters::Default();
    ClearVariableTrace();
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

/// What a step throws ends the evaluation and is recorded.
template <typename Step>
bool ExpressionEvaluator::Guard(const Step& step)
{
    try {
        return step();
    } catch (...) {
        return RecordThrown();
    }
}

bool ExpressionEvaluator::TryEvaluate(const WString& expression, EEToken& result)
{
    return Guard([&] { return ConvertAndEvaluate(expression, result); });
}

bool ExpressionEvaluator::ConvertAndEvaluate(const WString& expression, EEToken& result)
{
    StartRecord();
    const WorkspaceUse use(*this);
    WriteEvaluatorLog([&] { return L"\n->Expression: " + expression; });
    const bool isConverted = Convert(expression.ToCString());
    WriteEvaluatorLog(
        [&] { return (isConverted ? L" Posfix stack: " : L" Infix2Posfix failure, stack: ") + use.DescribePostfix(); });
    if (workspace->hasTokenCalls)
        workspace->KeepViews(use.GetFirst(), expression.View()); // for a function may change that text
    return isConverted && Evaluation(*this, *workspace, use.GetFirst()).Run(result);
}

/// A number or boolean; the given error when the value cannot be cast to it.
template <typename Value>
bool ExpressionEvaluator::TryEvaluateAs(const WString& expression, Value& result, const EvaluatorError& error)
{
    return Guard([&] {
        EEToken token;
        if (!TryEvaluate(expression, token))
            return false;
        if (token.TryCast(result))
            return true;
        ErrMsg(ExpressionEvaluatorException(error, 0));
        return false;
    });
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
    return Guard([&] {
        EEToken token;
        if (!TryEvaluate(expression, token))
            return false;
        result = token.ToString();
        return true;
    });
}

EEToken ExpressionEvaluator::Evaluate(const WString& expression)
{
    EEToken result;
    return OrThrow(TryEvaluate(expression, result), result, record.code);
}

double ExpressionEvaluator::EvaluateDouble(const WString& expression)
{
    double result = 0;
    return OrThrow(TryEvaluateDouble(expression, result), result, record.code);
}

int ExpressionEvaluator::EvaluateInt(const WString& expression)
{
    int result = 0;
    return OrThrow(TryEvaluateInt(expression, result), result, record.code);
}

bool ExpressionEvaluator::EvaluateBool(const WString& expression)
{
    bool result = false;
    return OrThrow(TryEvaluateBool(expression, result), result, record.code);
}

WString ExpressionEvaluator::EvaluateString(const WString& expression)
{
    WString result;
    return OrThrow(TryEvaluateString(expression, result), result, record.code);
}

void ExpressionEvaluator::ClearVariableTrace() noexcept
{
    trace.lines.Clear();
    trace.isFull = false;
}

void ExpressionEvaluator::LogVariable(const wchar_t* prefix, const WString& name, const EEToken& value)
{
    const auto makeLine = [&] {
        WString line(prefix);
        line += name;
        line += L'=';
        line += value.ToString();
        return line;
    };
    WriteEvaluatorLog(makeLine);
    if ((flags & EvaluatorFlags::traceVariables) == 0 || trace.isFull)
        return;
    try {
        trace.lines += trace.lines.IsEmpty() ? makeLine() : L"\n" + makeLine();
    } catch (const HostException& exception) {
        if (!IsHostError(exception, HostError::TextTooLong))
            throw;
        trace.isFull = true;
    }
}

double GetRandomNumber()
{
    return System::random.Next();
}
