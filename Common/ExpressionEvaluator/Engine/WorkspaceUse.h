#pragma once

#include "ExpressionEvaluator.h"
#include "Workspace.h"

/// The evaluator's workspace for the length of an evaluation, or of a step of one. What the use has left in it goes
/// with its end; texts go with that of the outermost, for a function may ask its evaluator for another evaluation.
class ExpressionEvaluator::WorkspaceUse
{
public:
    explicit WorkspaceUse(ExpressionEvaluator& evaluator)
        : evaluator(evaluator),
          workspace(Find(evaluator)),
          firstItem(workspace.postfix.GetSize()),
          firstOperand(workspace.operands.GetSize()),
          callDepth(evaluator.callDepth)
    {
        ++workspace.uses;
        workspace.isLogged = eeLog_gb.IsEnabled();
    }
    ~WorkspaceUse()
    {
        workspace.postfix.Cut(firstItem);
        workspace.operands.Cut(firstOperand);
        evaluator.callDepth = callDepth; // which an exception leaves as it was
        if (--workspace.uses == 0)
            workspace.texts.Clear();
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
            evaluator.workspace = Workspace::Borrow();
        return *evaluator.workspace;
    }

    ExpressionEvaluator& evaluator;
    Workspace& workspace;
    const std::size_t firstItem;
    const std::size_t firstOperand;
    const int callDepth;
};
