#include "ExpressionEvaluator.h"

#include "ExpressionEvaluatorException.h"
#include "OperatorTable.h"
#include "Text/Abort.h"

namespace {
/// What has just been read of a sub-expression, and so what may come next.
enum class State
{
    AfterOperator, // a binary operator, "(", or nothing yet
    AfterSign,     // a unary operator
    AfterOperand
};

/// A sub-expression on its way to postfix order: operands go to the output at once, operators wait on a stack until one
/// that binds less follows.
///
///     1 + 2 * 3      output 1 2 3      operators + *      end: 1 2 3 * +
///     2 * 3 + 1      output 2 3 *      operators +        "+" binds less than "*", which left the stack before it
class SubExpression
{
public:
    SubExpression(ExpressionEvaluator& evaluator, const wchar_t* start, wchar_t*& cursor, EETokenStack& output)
        : evaluator(evaluator), start(start), cursor(cursor), output(output)
    {}

    bool Convert(int* terminator);

private:
    ExpressionEvaluator& evaluator;
    const wchar_t* const start;
    wchar_t*& cursor;
    EETokenStack& output;
    EETokenStack operators;
    State state = State::AfterOperator;
    int depth = 0; // parentheses opened here and not yet closed

    bool Take(EEToken& token, int* terminator);
    bool TakeSign(EEToken& token);
    bool TakeEnd(const EEToken& token, int* terminator);
    bool TakeOpen(EEToken& token);
    bool TakeClose(const EEToken& token, int* terminator);
    bool TakeOperator(EEToken& token, bool expected, const EvaluatorError& unexpected);
    bool TakeCall(EEToken& token);
    bool TakeOperand(const EEToken& token);

    bool IsAfterOperand() const noexcept { return state == State::AfterOperand; }
    bool Fail(const EvaluatorError& error) { return evaluator.Fail(error, cursor); }
    bool Finish(int type, int* terminator);
};

/// Ends the sub-expression: the waiting operators go to the output.
bool SubExpression::Finish(int type, int* terminator)
{
    while (!operators.IsEmpty())
        operators.MoveTopToBottomOf(output);
    *terminator = type;
    return true;
}

/// sub-expression: tokens up to the end of the text, a "," or an unmatched ")"
bool SubExpression::Convert(int* terminator)
{
    EEToken token;
    *terminator = TT_NONE;
    while (*terminator == TT_NONE) {
        Abort::ThrowIfRequested();
        if (!evaluator.GetToken(token, &cursor) || !Take(token, terminator))
            return false;
    }
    return true;
}

bool SubExpression::Take(EEToken& token, int* terminator)
{
    if (token.GetType() == TT_DUALOP) {
        if (!IsAfterOperand())
            return TakeSign(token);
        token.SetType(TT_BINARYOP);
    }
    switch (token.GetType()) {
    case TT_END:
    case TT_PRMSEP: return TakeEnd(token, terminator);
    case TT_LEFTP: return TakeOpen(token);
    case TT_RIGHTP: return TakeClose(token, terminator);
    case TT_BINARYOP: return TakeOperator(token, IsAfterOperand(), Errors::OperandExpectedAtBinary);
    case TT_UNARYOP: return TakeOperator(token, !IsAfterOperand(), Errors::UnaryAfterOperand);
    case TT_FUNCOP: return TakeCall(token);
    case TT_OPERAND: return TakeOperand(token);
    default: return Fail(Errors::TokenUnrecognized);
    }
}

/// A "+" or "-" where an operand is due; a plus has no effect. Nothing binds tighter than the minus, so it waits on top
/// of all others.
bool SubExpression::TakeSign(EEToken& token)
{
    if (state == State::AfterSign)
        return Fail(Errors::TwoUnaryOperators);
    if (token.Is(L'&'))
        return Fail(Errors::OperandExpectedAtDual);
    if (token.Is(L'-')) {
        token.SetToken(TT_UNARYOP, unaryMinus);
        operators.Push(token);
    }
    state = State::AfterSign;
    return true;
}

bool SubExpression::TakeEnd(const EEToken& token, int* terminator)
{
    if (!IsAfterOperand())
        return Fail(Errors::OperandExpectedAtEnd);
    if (depth > 0)
        return Fail(Errors::CloseExpected);
    return Finish(token.GetType(), terminator);
}

bool SubExpression::TakeOpen(EEToken& token)
{
    if (IsAfterOperand())
        return Fail(Errors::OperatorExpected);
    operators.Push(token);
    ++depth;
    state = State::AfterOperator;
    return true;
}

/// A ")" that nothing here opened belongs to an enclosing call.
bool SubExpression::TakeClose(const EEToken& token, int* terminator)
{
    if (!IsAfterOperand())
        return Fail(Errors::OperandExpectedAtClose);
    if (depth == 0)
        return Finish(token.GetType(), terminator);
    while (operators.Peek().GetType() != TT_LEFTP)
        operators.MoveTopToBottomOf(output);
    operators.Pop();
    --depth;
    return true;
}

bool SubExpression::TakeOperator(EEToken& token, bool expected, const EvaluatorError& unexpected)
{
    if (!expected)
        return Fail(unexpected);
    const int priority = token.GetPriority();
    while (!operators.IsEmpty()) {
        EEToken& waiting = operators.Peek();
        if (waiting.GetType() == TT_LEFTP || waiting.GetPriority() < priority ||
            (waiting.GetPriority() == priority && token.IsRightAssoc()))
            break;
        operators.MoveTopToBottomOf(output);
    }
    operators.Push(token);
    state = State::AfterOperator;
    return true;
}

bool SubExpression::TakeCall(EEToken& token)
{
    if (IsAfterOperand())
        return Fail(Errors::CallAfterOperand);
    if (token.GetNoPrm() == 0)
        return Fail(Errors::FunctionWithoutParameters);
    int ended = TT_NONE;
    return evaluator.InfixFunctionToPostfix(start, token, cursor, &ended, output) && TakeOperand(token);
}

bool SubExpression::TakeOperand(const EEToken& token)
{
    if (IsAfterOperand())
        return Fail(Errors::OperandAfterOperand);
    output.Put(token);
    state = State::AfterOperand;
    return true;
}

/// Out of line, because the recursion of calls within calls runs through the caller's stack frame.
[[gnu::noinline]] void PutMark(EETokenStack& postfix, int type, wchar_t ch, int position)
{
    postfix.Put(EEToken(type, ch, position));
}
} // namespace

// NOLINTNEXTLINE(performance-unnecessary-value-param): the form that other plug-ins are linked against
bool ExpressionEvaluator::Infix2Postfix(WString expression, EETokenStack& postfix)
{
    return Convert(expression.ToCString(), postfix);
}

/// An exception is an error behind what has been read.
bool ExpressionEvaluator::Convert(const wchar_t* expression, EETokenStack& postfix)
{
    wchar_t* cursor = const_cast<wchar_t*>(expression); // only moved, never written through
    EEToken error;
    try {
        return ConvertAll(expression, cursor, postfix);
    } catch (...) {
        error.SetPosition(static_cast<int>(cursor - expression));
        TakeThrown(error);
    }
    return RecordValue(error);
}

/// expression: sub-expression, end of text
bool ExpressionEvaluator::ConvertAll(const wchar_t* expression, wchar_t*& cursor, EETokenStack& postfix)
{
    postfix.Clear();
    record.expressionStart = expression;
    int terminator = TT_NONE;
    if (!InfixSubExpr2Postfix(expression, cursor, &terminator, postfix))
        return false;
    switch (terminator) {
    case TT_END: return true;
    case TT_RIGHTP: return Fail(Errors::CloseUnmatched, cursor);
    case TT_PRMSEP: return Fail(Errors::SeparatorOutsideCall, cursor);
    default: return Fail(Errors::EndExpected, cursor);
    }
}

bool ExpressionEvaluator::InfixSubExpr2Postfix(
    const wchar_t* start, wchar_t*& cursor, int* terminator, EETokenStack& postfix)
{
    record.expressionStart = start;
    return SubExpression(*this, start, cursor, postfix).Convert(terminator);
}

/// arguments: sub-expression { "," sub-expression } ")"
///
/// f(a, b) becomes "|", postfix of a, ",", postfix of b; the caller appends f.
bool ExpressionEvaluator::InfixFunctionToPostfix(
    const wchar_t* start, EEToken& function, wchar_t*& cursor, int* terminator, EETokenStack& postfix)
{
    if (callDepth == maxCallDepth)
        return Fail(Errors::NestedTooDeeply, cursor);
    ExpressionEvaluator nested(this);
    PutMark(postfix, TT_PRMLIST, L'|', static_cast<int>(cursor - start)); // at the "(", counted from 1

    const int expected = function.GetType() == TT_FUNCOP ? function.GetNoPrm() : 0; // below 0: any number
    for (int given = 1;; ++given) {
        const wchar_t* argument = cursor;
        if (!nested.InfixSubExpr2Postfix(start, cursor, terminator, postfix))
            return ReportArgument(nested);

        const bool tooMany = expected >= 0 && given > expected;
        if (*terminator == TT_PRMSEP) {
            if (tooMany)
                return Fail(Errors::TooManyParametersAtSeparator, argument);
            PutMark(postfix, TT_PRMSEP, L',', 0);
            continue;
        }
        if (given < expected)
            return Fail(Errors::MissingParameter, cursor);
        if (*terminator != TT_RIGHTP)
            return Fail(Errors::CallUnclosed, cursor);
        if (tooMany)
            return Fail(Errors::TooManyParametersAtClose, argument);
        function.SetNoPrm(given);
        return true;
    }
}

/// Records the error of an argument here. Where a ")" stood in place of an operand, an argument is missing.
bool ExpressionEvaluator::ReportArgument(const ExpressionEvaluator& nested)
{
    constexpr EvaluatorError empty = Errors::OperandExpectedAtClose;
    if (nested.record.code == ExitCode(0, evaluatorModule, empty.number))
        ErrMsg(ExpressionEvaluatorException(Errors::EmptyArgument, nested.record.position));
    else
        ErrMsg(nested.record.code, nested.record.position, nested.record.message.ToCString());
    return false;
}
