#pragma once

#include "ExpressionEvaluator.h"
#include "Workspace.h"

#include <span>

class HostException;

/// Consumes the items of an expression in postfix order. An error ends its level alone, as an error value: the rest of
/// the argument is skipped, and the function of the call decides whether to raise it or to test it.
class Evaluation
{
public:
    /// Consumes the workspace's postfix from `first` on, which stays as it is meanwhile.
    Evaluation(ExpressionEvaluator& evaluator, Workspace& workspace, std::size_t first) noexcept
        : evaluator(evaluator), workspace(workspace), next(first), last(workspace.postfix.GetSize())
    {}

    /// Evaluates the whole; false with the error recorded, and in `result` when it is that of a value.
    bool Run(EEToken& result);
    /// level: operands, operators and calls up to the end, a "," or the function of the call around it, which is left
    ///
    /// `terminator` receives what ended it, as a token type. On false the error is in `result`, or it is recorded.
    bool EvaluateLevel(Item& result, int& terminator);
    /// Discards the rest of the argument, its "," included; `terminator` receives what ended it unless that is the end.
    void SkipArgument(int& terminator);
    /// The place of the first item that is left.
    std::size_t GetNext() const noexcept { return next; }

private:
    ExpressionEvaluator& evaluator;
    Workspace& workspace;
    std::size_t next;
    const std::size_t last;
    std::size_t base = 0; // where the operands of the level begin

    bool HasNext() const noexcept { return next != last; }
    const Item& Take()
    {
        const Item& item = workspace.postfix[next++];
        workspace.Log(L"Pop", item);
        return item;
    }
    void GiveBack(const Item& item);
    bool TakeItems(Item& result, int& terminator);
    bool TakeResult(Item& result, int& terminator);
    [[gnu::cold]] bool RefuseRest();

    // These return false with the error in `result`, which brings the place where it belongs by itself.

    [[gnu::cold]] bool Fail(const EvaluatorError& error, int position, Item& result);
    bool FailAsHost(const HostException& exception, Item& result);
    [[gnu::cold]] bool Refuse(const Item& operand, const Refusal& refusal, Item& result);
    void TakeError(const Item& operand, Item& result);
    void Record(const EvaluatorError& error, int position);

    // An operation takes its operands off the stack and puts its value there. The right operand is on top, and is read
    // first unless said otherwise.

    bool Apply(const Item& item, Item& result);
    /// Ordering reads the left operand first.
    template <typename Operation>
    bool Calculate(Item& result, Operation operation, bool leftFirst = false);
    template <typename Operation>
    [[gnu::noinline]] bool Combine(Item& result, Operation operation);
    [[gnu::noinline]] bool Raise(Item& result);
    bool Divide(Item& result);
    bool Negate(Item& result);
    bool Join(Item& result);
    bool Compare(Item& result, bool converts, bool wanted);
    // Any operands. Out of line, so that the way of plain numbers stays short.
    template <typename Operation>
    [[gnu::noinline]] bool CalculateOthers(Item& result, Operation operation, bool leftFirst);
    [[gnu::noinline]] bool DivideOthers(Item& result);
    [[gnu::noinline]] bool CompareOthers(Item& result, bool converts, bool wanted);
    bool CompareTexts(const Item& left, const Item& right, bool converts, bool wanted, Item& result);

    const Item* Pop(Item& result);
    bool PopNumber(double& number, Item& result);
    bool PopTruth(bool& truth, Item& result);
    bool ReadNumber(const Item& operand, double& number, Item& result)
    {
        Refusal refusal;
        return TakeNumber(operand, number, refusal) || Refuse(operand, refusal, result);
    }
    bool ReadText(const Item& operand, bool converts, NumberBuffer& buffer, std::wstring_view& text, Item& result);
    Item* FindNumbers() const;
    template <typename Value>
    bool Replace(Item& left, Value value, Item& result);
    template <typename Value>
    bool Give(Value value, Item& result);
    bool Put(const Item& operand)
    {
        workspace.PushOperand(operand);
        return true;
    }

    bool IsTooDeep() const noexcept;
    bool Call(int position, Item& result);
    int EvaluateArguments();
    bool CallFunction(const Item& function, std::size_t first, TextArena::Place firstText, Item& result);
    bool Run(EEFunction& function, std::span<const Item> arguments, Item& value, Item& result);
    bool RunFunction(EEFunction& function, std::span<const Item> arguments, Item& value, Item& result);
    bool RunRoutine(double (*routine)(double), const Item& argument, Item& value, Item& result);
    bool RunRoutine(
        double (*routine)(std::span<const double>), std::span<const Item> arguments, Item& value, Item& result);
    template <typename Action>
    bool Try(const Action& action, Item& result);
};

/// Runs what may throw; an exception becomes the error of the level.
template <typename Action>
bool Evaluation::Try(const Action& action, Item& result)
{
    try {
        action();
        return true;
    } catch (...) {
        EEToken error;
        error.SetPosition(result.position);
        evaluator.TakeThrown(error);
        workspace.Keep(error, result);
        return false;
    }
}
