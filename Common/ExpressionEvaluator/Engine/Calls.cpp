// How the evaluation calls functions.

#include "Evaluation.h"

#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorException.h"
#include "ExpressionEvaluatorFunctions.h"
#include "Services/StackRoom.h"
#include "Text/Abort.h"

#include <cmath>

/// The limit holds for items that no converter has made. Every few levels it also counts whether the stack has room for
/// some more.
inline bool Evaluation::IsTooDeep() const noexcept
{
    constexpr int levels = 8;
    const int depth = evaluator.callDepth;
    return depth == ExpressionEvaluator::maxCallDepth ||
        (depth >= levels && depth % levels == 0 && StackRoom::IsShort());
}

/// Evaluates the arguments of the call at `position`, and then its function.
bool Evaluation::Call(int position, Item& result)
{
    if (IsTooDeep()) {
        Record(Errors::NestedTooDeeply, position);
        next = last; // whose arguments the rest are is no longer known: no function is called with them
        return false;
    }
    ++evaluator.callDepth;
    const std::size_t first = workspace.operands.GetSize();
    const TextArena::Place firstText = workspace.texts.GetPlace();
    const bool hasFunction = EvaluateArguments() == TT_FUNCOP;
    if (!hasFunction)
        Record(Errors::FunctionTokenExpected, position);
    const bool isCalled = hasFunction && CallFunction(Item(Take()), first, firstText, result);
    --evaluator.callDepth;
    return isCalled;
}

/// Evaluates each argument as a level of its own and returns what ended the last one. A failed argument becomes an
/// error value.
int Evaluation::EvaluateArguments()
{
    int ended = TT_PRMSEP;
    while (ended == TT_PRMSEP) {
        Item argument;
        if (!EvaluateLevel(argument, ended) && argument.IsValued())
            argument = evaluator.GetRecordedError();
        workspace.Log(L"Put", argument);
        workspace.operands.Push(argument);
    }
    return ended;
}

/// Replaces the arguments, and the texts made for them, by the function's value.
bool Evaluation::CallFunction(const Item& function, std::size_t first, TextArena::Place firstText, Item& result)
{
    if (!function.function) {
        const WString message = WString::Format(Errors::UnknownFunction.message, WString(function.GetText()));
        evaluator.ErrMsg(ExpressionEvaluatorException(Errors::UnknownFunction.number, message, function.position));
        return false;
    }
    Item value;
    if (!Run(*function.function, {&workspace.operands[first], workspace.operands.end()}, value, result))
        return false;
    if (evaluator.IsLogging())
        evaluator.LogVariable(L"Function:", WString(function.GetText()), EEToken(value));
    workspace.operands.Cut(first);
    workspace.texts.ReturnTo(firstText);
    value.SetText(workspace.texts.Copy(value.GetText()));
    return Put(value);
}

/// The log shows the arguments as a function takes them, from a stack of tokens.
bool Evaluation::Run(EEFunction& function, std::span<const Item> arguments, Item& value, Item& result)
{
    const EEFunction::Routine& routine = function.GetRoutine();
    if (workspace.isLogged)
        return RunFunction(function, arguments, value, result);
    if (routine.ofOne && arguments.size() == 1)
        return RunRoutine(routine.ofOne, arguments[0], value, result);
    if (routine.ofMany)
        return RunRoutine(routine.ofMany, arguments, value, result);
    return RunFunction(function, arguments, value, result);
}

bool Evaluation::RunFunction(EEFunction& function, std::span<const Item> arguments, Item& value, Item& result)
{
    EETokenStack stack;
    for (const Item& argument : arguments)
        stack.Append(argument);
    EEToken answer;
    answer.SetPosition(result.position);
    if (!Try([&] { evaluator.RunFunction(function, answer, stack); }, result))
        return false;
    workspace.Keep(answer, value);
    return true;
}

bool Evaluation::RunRoutine(double (*routine)(double), const Item& argument, Item& value, Item& result)
{
    const int position = argument.position;
    double number = 0;
    double answer = 0;
    if (!ReadNumber(argument, number, result) || !Try([&] { answer = routine(number); }, result))
        return false;
    Abort::ThrowIfRequested();
    value = std::isnan(answer) ? Item::Error(Errors::InvalidOperation, position - 1)
                               : Item::Number(answer, result.position);
    return true;
}

bool Evaluation::RunRoutine(
    double (*routine)(std::span<const double>), std::span<const Item> arguments, Item& value, Item& result)
{
    std::vector<double>& numbers = workspace.numbers;
    numbers.resize(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i)
        if (!ReadNumber(arguments[i], numbers[i], result))
            return false;
    double answer = 0;
    if (!Try([&] { answer = routine(numbers); }, result))
        return false;
    Abort::ThrowIfRequested();
    value = Item::Number(answer, result.position);
    return true;
}
