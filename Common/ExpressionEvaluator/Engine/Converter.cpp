#include "Converter.h"

#include "ExpressionEvaluator.h"
#include "Text/Abort.h"

bool Converter::Fail(const EvaluatorError& error, const wchar_t* at)
{
    return evaluator.Fail(error, at);
}

static constexpr Item beginning_lc = Item::Mark(TT_PRMLIST, L"|", 0);
static constexpr Item separator_lc = Item::Mark(TT_PRMSEP, L",", 0);

/// What operators wait above: the beginning of a sub-expression, and an opening parenthesis.
static constexpr OperatorRow boundary_lc = {L"(", 0, 0, Operation::And};

inline void Converter::BeginSubExpression()
{
    workspace.operators.Push({&boundary_lc, 0});
    current = {};
}

/// What the log shows of one that waits.
static Item AsItem(const WaitingOperator& waiting)
{
    if (waiting.row == &boundary_lc)
        return Item::Mark(TT_LEFTP, waiting.row->GetName(), waiting.position);
    return Item::Operator(*waiting.row, waiting.position);
}

inline void Converter::PushOperator(const OperatorRow& row, int position)
{
    const WaitingOperator waiting = {&row, position};
    if (workspace.isLogged)
        workspace.Log(L"Push", AsItem(waiting));
    workspace.operators.Push(waiting);
}

inline const WaitingOperator& Converter::PopOperator()
{
    if (workspace.isLogged)
        workspace.Log(L"Pop", AsItem(workspace.operators.GetTop()));
    return workspace.operators.Pop();
}

/// Puts out the waiting operators of that priority and above.
inline void Converter::PutOperators(int priority)
{
    while (workspace.operators.GetTop().row->priority >= priority) {
        const WaitingOperator& waiting = PopOperator();
        Item& item = workspace.postfix.GetNext();
        item.position = waiting.position;
        item.SetOperator(waiting.row->GetType(), *waiting.row);
        workspace.PutNext(item);
    }
}

[[gnu::always_inline]] inline bool Converter::TakeOperand(const Item& item)
{
    if (IsAfterOperand())
        return Fail(Errors::OperandAfterOperand);
    workspace.PutNext(item);
    current.state = SubExpression::AfterOperand;
    return true;
}

[[gnu::always_inline]] inline bool Converter::TakeOperator(const OperatorRow& row, int position)
{
    if (!IsAfterOperand())
        return Fail(Errors::OperandExpectedAtBinary);
    const bool groupsFromTheRight = row.operation == Operation::Raise;
    PutOperators(row.priority + (groupsFromTheRight ? 1 : 0));
    PushOperator(row, position);
    current.state = SubExpression::AfterOperator;
    return true;
}

[[gnu::always_inline]] inline bool Converter::TakeOpen(int position)
{
    if (IsAfterOperand())
        return Fail(Errors::OperatorExpected);
    PushOperator(boundary_lc, position);
    ++current.depth;
    current.state = SubExpression::AfterOperator;
    return true;
}

/// A ")" that nothing in the sub-expression opened belongs to the call around it; where it stands in place of an
/// operand of that call, an argument is missing.
[[gnu::always_inline]] inline bool Converter::TakeClose()
{
    if (!IsAfterOperand())
        return Fail(workspace.calls.IsEmpty() ? Errors::OperandExpectedAtClose : Errors::EmptyArgument);
    if (current.depth == 0)
        return EndSubExpression(TT_RIGHTP);
    PutOperators(1);
    PopOperator();
    --current.depth;
    return true;
}

/// A "+" or "-" where an operand is due; a plus has no effect. Nothing binds tighter than the minus, so it waits on top
/// of all others.
bool Converter::TakeSign(const Item& item)
{
    if (current.state == SubExpression::AfterSign)
        return Fail(Errors::TwoUnaryOperators);
    if (item.row->operation == Operation::Join)
        return Fail(Errors::OperandExpectedAtDual);
    if (item.row->operation == Operation::Subtract)
        PushOperator(RowOf(Operation::Negate), item.position);
    current.state = SubExpression::AfterSign;
    return true;
}

bool Converter::TakeEnd(int type)
{
    if (!IsAfterOperand())
        return Fail(Errors::OperandExpectedAtEnd);
    if (current.depth > 0)
        return Fail(Errors::CloseExpected);
    return EndSubExpression(type);
}

bool Converter::TakeCall(const Item& function)
{
    if (IsAfterOperand())
        return Fail(Errors::CallAfterOperand);
    if (function.dataType == 0)
        return Fail(Errors::FunctionWithoutParameters);
    return OpenCall(function);
}

bool Converter::OpenCall(const Item& function)
{
    if (static_cast<int>(workspace.calls.GetSize()) + evaluator.callDepth >= ExpressionEvaluator::maxCallDepth)
        return Fail(Errors::NestedTooDeeply);
    workspace.calls.Push({function, current, GetCursor(), 1});
    Item beginning = beginning_lc;
    beginning.position = static_cast<int>(GetCursor() - start); // at the "(", counted from 1
    workspace.Put(beginning);
    BeginSubExpression();
    return true;
}

/// The operators that still wait go to the output.
bool Converter::EndSubExpression(int type)
{
    PutOperators(1);
    if (!workspace.calls.IsEmpty())
        return EndArgument(workspace.calls.GetTop(), type);
    ended = type;
    return false;
}

bool Converter::EndArgument(PendingCall& call, int type)
{
    const int expected = call.function.dataType; // below 0: any number
    const bool isTooMany = expected >= 0 && call.given > expected;
    if (type == TT_PRMSEP) {
        if (isTooMany)
            return Fail(Errors::TooManyParametersAtSeparator, call.argument);
        workspace.Put(separator_lc);
        ++call.given;
        call.argument = GetCursor();
        current.state = SubExpression::AfterOperator;
        return true;
    }
    if (call.given < expected)
        return Fail(Errors::MissingParameter);
    if (type != TT_RIGHTP)
        return Fail(Errors::CallUnclosed);
    if (isTooMany)
        return Fail(Errors::TooManyParametersAtClose, call.argument);
    return EndCall(call);
}

/// The call is an operand of the sub-expression around it.
bool Converter::EndCall(const PendingCall& call)
{
    Item function = call.function;
    function.dataType = call.given;
    current = call.outer;
    workspace.operators.Pop(); // the boundary
    workspace.calls.Pop();
    if (awaited && workspace.calls.IsEmpty()) {
        *awaited = function;
        ended = TT_RIGHTP;
        return false;
    }
    workspace.Put(function);
    current.state = SubExpression::AfterOperand;
    return true;
}

[[gnu::always_inline]] inline bool Converter::Take(int type, const Item& item)
{
    switch (type) {
    case TT_OPERAND: return TakeOperand(item);
    case TT_DUALOP:
        if (!IsAfterOperand())
            return TakeSign(item);
        [[fallthrough]];
    case TT_BINARYOP: return TakeOperator(*item.row, item.position);
    case TT_LEFTP: return TakeOpen(item.position);
    case TT_RIGHTP: return TakeClose();
    case TT_FUNCOP: return TakeCall(item);
    case TT_END:
    case TT_PRMSEP: return TakeEnd(type);
    case TT_NONE: return false;
    default: return Fail(Errors::TokenUnrecognized);
    }
}

bool Converter::Convert(int& terminator)
{
    BeginSubExpression();
    bool goesOn = true;
    while (goesOn) {
        Abort::ThrowIfRequested();
        Item& item = workspace.postfix.GetNext();
        goesOn = Take(tokenizer.Read(item), item);
    }
    terminator = ended;
    return ended != TT_NONE;
}

bool Converter::ConvertArguments(Item& function, int& terminator)
{
    awaited = &function;
    return OpenCall(function) && Convert(terminator);
}
