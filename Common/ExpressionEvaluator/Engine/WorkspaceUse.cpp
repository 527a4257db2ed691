#include "WorkspaceUse.h"

#include "ExpressionEvaluatorFunctions.h"

void ExpressionEvaluator::WorkspaceReturn::operator()(Workspace* workspace) const noexcept
{
    Workspace::GiveBack(workspace);
}

void ExpressionEvaluator::WorkspaceUse::CopyPostfixTo(EETokenStack& stack) const
{
    for (std::size_t i = firstItem; i < workspace.postfix.GetSize(); ++i)
        stack.Append(workspace.postfix[i]);
}

WString ExpressionEvaluator::WorkspaceUse::DescribePostfix() const
{
    EETokenStack stack;
    CopyPostfixTo(stack);
    return stack.ToString(true);
}

/// What a token that anybody may have made is an operator for: any token with the one character of one, and else a
/// binary operator.
static void SetOperator(Item& item)
{
    const bool isCharacter = item.length == 1 && item.type != TT_NONE;
    const OperatorRow* const row = isCharacter || item.type == TT_BINARYOP ? FindOperator(item.GetText()) : nullptr;
    item.isOperator = row != nullptr;
    if (row)
        item.row = row;
    else if (isCharacter)
        item.error = &Errors::InvalidOperatorCharacter;
    else if (item.type == TT_UNARYOP)
        item.error = &Errors::InvalidUnaryOperator;
    else
        item.error = item.type == TT_BINARYOP ? &Errors::InvalidBinaryOperator : nullptr;
}

void ExpressionEvaluator::WorkspaceUse::CopyPostfixFrom(const EETokenStack& stack) const
{
    stack.ForEach([&](const EEToken& token) {
        Item item;
        workspace.Keep(token, item);
        switch (item.type) {
        case TT_OPERAND:
        case TT_PRMLIST:
        case TT_PRMSEP: break;
        case TT_FUNCOP: item.function = fnTable_gb.FindOrNull(item.GetText()); break;
        default: SetOperator(item);
        }
        workspace.postfix.Push(item);
    });
}
