#pragma once

#include "ExpressionEvaluator.h"
#include "Workspace.h"

/// The evaluator's workspace for the length of an evaluation, or of a step of one. What the use has left in it goes
/// with its end, and what was there before stays, for a function may ask its evaluator for another evaluation.
class ExpressionEvaluator::WorkspaceUse
{
public:
    explicit WorkspaceUse(ExpressionEvaluator& evaluator)
        : evaluator(evaluator),
          workspace(Find(evaluator)),
          firstItem(workspace.postfix.GetSize()),
          firstOperand(workspace.operands.GetSize()),
          firstText(workspace.texts.GetPlace()),
          callDepth(evaluator.callDepth)
    {
        workspace.isLogged = eeLog_gb.IsEnabled();
        workspace.operators.Cut(0); // what a conversion that failed has left
        workspace.calls.Cut(0);
        workspace.hasTokenCalls = false;
    }
    ~WorkspaceUse()
    {
        workspace.postfix.Cut(firstItem);
        workspace.operands.Cut(firstOperand);
        workspace.texts.ReturnTo(firstText);
        evaluator.callDepth = callDepth; // an exception passes by the lines that count it down
    }
    WorkspaceUse(const WorkspaceUse&) = delete;
    WorkspaceUse& operator=(const WorkspaceUse&) = delete;

    Workspace& Get() const noexcept { return workspace; }
    /// Where the postfix of this use begins.
    std::size_t GetFirst() const noexcept { return firstItem; }
    /// Puts that postfix at the bottom of a token stack, or takes the tokens of one as that postfix.
    void CopyPostfixTo(EETokenStack& stack) const;
    void CopyPostfixFrom(const EETokenStack& stack) const;
    /// For the log.
    WString DescribePostfix() const;

private:
    static Workspace& Find(ExpressionEvaluator& evaluator)
    {
        if (!evaluator.workspace)
            evaluator.workspace.reset(Workspace::Borrow());
        return *evaluator.workspace;
    }

    ExpressionEvaluator& evaluator;
    Workspace& workspace;
    const std::size_t firstItem;
    const std::size_t firstOperand;
    const TextArena::Place firstText;
    const int callDepth;
};
