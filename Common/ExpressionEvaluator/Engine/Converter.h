#pragma once

#include "ExpressionEvaluator.h"
#include "Tokenizer.h"

/// Orders the items of an expression in postfix: operands go to the output at once, operators wait on a stack until one
/// that binds less follows, and a call waits until its arguments are converted.
///
///     1 + 2 * 3      output 1 2 3      operators + *      end: 1 2 3 * +
///     2 * 3 + 1      output 2 3 *      operators +        "+" binds less than "*", which left the stack before it
///     f(a, b)        output | a , b f
///
/// What is wrong with the expression is recorded in the evaluator; the output then ends where that was noticed.
class Converter
{
public:
    /// Converts what stands at `cursor`; positions count from `start`.
    Converter(
        ExpressionEvaluator& evaluator, Workspace& workspace, const wchar_t* start, const wchar_t* cursor) noexcept
        : evaluator(evaluator), workspace(workspace), tokenizer(evaluator, workspace, start, cursor), start(start)
    {
        evaluator.record.expressionStart = start;
    }

    /// sub-expression: operands and operators up to the end of the text, a "," or an unmatched ")", which `terminator`
    /// receives as a token type
    bool Convert(int& terminator);
    /// arguments: sub-expression { "," sub-expression } ")"
    ///
    /// The function, whose name and "(" have been read, receives the number of its arguments; the caller puts it out.
    bool ConvertArguments(Item& function, int& terminator);
    /// Behind what has been read.
    const wchar_t* GetCursor() const noexcept { return tokenizer.GetCursor(); }

private:
    ExpressionEvaluator& evaluator;
    Workspace& workspace;
    Tokenizer tokenizer;
    const wchar_t* const start;
    SubExpression current;
    int ended = TT_NONE;     // what ended the whole
    Item* awaited = nullptr; // the call whose end is the end

    // False at the end of all, and where something is wrong.

    bool Take(int type, const Item& item);
    bool TakeSign(const Item& item);
    bool TakeEnd(int type);
    bool TakeOpen(int position);
    bool TakeClose();
    bool TakeOperator(const OperatorRow& row, int position);
    bool TakeOperand(const Item& item);
    bool TakeCall(const Item& function);
    bool OpenCall(const Item& function);
    bool EndSubExpression(int type);
    bool EndArgument(PendingCall& call, int type);
    bool EndCall(const PendingCall& call);

    bool IsAfterOperand() const noexcept { return current.state == SubExpression::AfterOperand; }
    void BeginSubExpression();
    void PushOperator(const OperatorRow& row, int position);
    const WaitingOperator& PopOperator();
    void PutOperators(int priority);
    bool Fail(const EvaluatorError& error, const wchar_t* at);
    bool Fail(const EvaluatorError& error) { return Fail(error, GetCursor()); }
};
