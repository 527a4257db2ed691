// The steps of an evaluation as operations on tokens: what goes in becomes items, what comes out is made of items.

#include "Converter.h"
#include "Evaluation.h"
#include "WorkspaceUse.h"

bool ExpressionEvaluator::GetToken(EEToken& token, wchar_t** cursor)
{
    const WorkspaceUse use(*this);
    Tokenizer tokenizer(*this, use.Get(), record.expressionStart, *cursor);
    Item item;
    const bool isRead = tokenizer.Read(item) != TT_NONE;
    *cursor += tokenizer.GetCursor() - *cursor;
    if (isRead)
        token.SetItem(item);
    return isRead;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the form that other plug-ins are linked against
bool ExpressionEvaluator::Infix2Postfix(WString expression, EETokenStack& postfix)
{
    const WorkspaceUse use(*this);
    postfix.Clear();
    const bool isConverted = Convert(expression.ToCString());
    use.CopyPostfixTo(postfix);
    return isConverted;
}

/// expression: sub-expression, end of text
///
/// An exception is an error behind what has been read.
bool ExpressionEvaluator::Convert(const wchar_t* expression)
{
    Converter converter(*this, *workspace, expression, expression);
    try {
        int terminator = TT_NONE;
        if (!converter.Convert(terminator))
            return false;
        return terminator == TT_END || FailBehind(terminator, converter.GetCursor());
    } catch (...) {
        EEToken error;
        error.SetPosition(static_cast<int>(converter.GetCursor() - expression));
        TakeThrown(error);
        return RecordValue(error);
    }
}

/// What ends a sub-expression does not end an expression.
bool ExpressionEvaluator::FailBehind(int terminator, const wchar_t* at)
{
    switch (terminator) {
    case TT_RIGHTP: return Fail(Errors::CloseUnmatched, at);
    case TT_PRMSEP: return Fail(Errors::SeparatorOutsideCall, at);
    default: return Fail(Errors::EndExpected, at);
    }
}

bool ExpressionEvaluator::InfixSubExpr2Postfix(
    const wchar_t* start, wchar_t*& cursor, int* terminator, EETokenStack& postfix)
{
    const WorkspaceUse use(*this);
    Converter converter(*this, use.Get(), start, cursor);
    const bool isConverted = converter.Convert(*terminator);
    cursor += converter.GetCursor() - cursor;
    use.CopyPostfixTo(postfix);
    return isConverted;
}

bool ExpressionEvaluator::InfixFunctionToPostfix(
    const wchar_t* start, EEToken& function, wchar_t*& cursor, int* terminator, EETokenStack& postfix)
{
    const WorkspaceUse use(*this);
    Converter converter(*this, use.Get(), start, cursor);
    Item item;
    use.Get().Keep(function, item);
    if (item.type != TT_FUNCOP)
        item.dataType = 0;
    const bool isConverted = converter.ConvertArguments(item, *terminator);
    cursor += converter.GetCursor() - cursor;
    use.CopyPostfixTo(postfix);
    if (isConverted)
        function.SetNoPrm(item.dataType);
    return isConverted;
}

bool ExpressionEvaluator::EvaluatePostfixExpr(EEToken& result, EETokenStack& postfix)
{
    const WorkspaceUse use(*this);
    use.CopyPostfixFrom(postfix);
    Evaluation evaluation(*this, use.Get(), use.GetFirst());
    const bool isEvaluated = evaluation.Run(result);
    postfix.Drop(evaluation.GetNext() - use.GetFirst());
    return isEvaluated;
}

bool ExpressionEvaluator::EvaluatePostfixSubExpr(EEToken& result, EETokenStack& postfix, int* terminator)
{
    const WorkspaceUse use(*this);
    use.CopyPostfixFrom(postfix);
    Evaluation evaluation(*this, use.Get(), use.GetFirst());
    Item value;
    const bool isEvaluated = evaluation.EvaluateLevel(value, *terminator);
    result.SetItem(value);
    postfix.Drop(evaluation.GetNext() - use.GetFirst());
    return isEvaluated;
}

bool ExpressionEvaluator::OnErrorCleanupPostfixStack(EETokenStack& postfix, int* terminator)
{
    const WorkspaceUse use(*this);
    use.CopyPostfixFrom(postfix);
    Evaluation evaluation(*this, use.Get(), use.GetFirst());
    evaluation.SkipArgument(*terminator);
    postfix.Drop(evaluation.GetNext() - use.GetFirst());
    return true;
}
