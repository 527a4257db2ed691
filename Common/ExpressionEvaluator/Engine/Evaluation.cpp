#include "Evaluation.h"

#include "EEMissingVariableException.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorException.h"
#include "Text/Abort.h"

void Evaluation::Record(const EvaluatorError& error, int position)
{
    evaluator.ErrMsg(ExitCode(0, evaluatorModule, error.number), position, error.message);
}

void Evaluation::GiveBack(const Item& item)
{
    workspace.Log(L"Push", item);
    --next;
}

/// The level's value is its one operand.
inline bool Evaluation::TakeResult(Item& result, int& terminator)
{
    Stack<Item>& operands = workspace.operands;
    if (operands.GetSize() == base) {
        Fail(Errors::StackEmpty, 0, result);
        SkipArgument(terminator);
        return false;
    }
    result = workspace.PopOperand();
    return operands.GetSize() == base || RefuseRest();
}

/// More than one operand is left: the bottom one is not understood.
bool Evaluation::RefuseRest()
{
    Stack<Item>& operands = workspace.operands;
    while (operands.GetSize() > base + 1)
        workspace.PopOperand();
    Record(Errors::UnexpectedToken, workspace.PopOperand().position);
    return false;
}

[[gnu::always_inline]] inline bool Evaluation::TakeItems(Item& result, int& terminator)
{
    while (HasNext()) {
        Abort::ThrowIfRequested();
        const Item& item = Take();
        result.position = item.position;
        if (item.type == TT_OPERAND) {
            Put(item);
            continue;
        }
        if (item.type == TT_FUNCOP || item.type == TT_PRMSEP) {
            terminator = item.type;
            if (item.type == TT_FUNCOP)
                GiveBack(item);
            break;
        }
        if (item.type == TT_PRMLIST ? !Call(item.position, result) : !Apply(item, result)) {
            SkipArgument(terminator);
            return false;
        }
    }
    return TakeResult(result, terminator);
}

bool Evaluation::EvaluateLevel(Item& result, int& terminator)
{
    static constexpr Item unevaluated = Item::Error(Errors::Unevaluated, 0);
    const std::size_t outerBase = base;
    base = workspace.operands.GetSize();
    terminator = TT_END;
    result = unevaluated;
    const bool isEvaluated = TakeItems(result, terminator);
    workspace.operands.Cut(base);
    base = outerBase;
    return isEvaluated;
}

bool Evaluation::Run(EEToken& result)
{
    Item value;
    int terminator = TT_END;
    const bool isEvaluated = EvaluateLevel(value, terminator);
    result.SetItem(value);
    if (!evaluator.RecordValue(result) || !isEvaluated)
        return false;
    if (terminator == TT_END && !HasNext())
        return true;
    Record(terminator == TT_END ? Errors::UnexpectedStackEnd : Errors::UnexpectedEnd, 0);
    return false;
}

void Evaluation::SkipArgument(int& terminator)
{
    int calls = 0; // begun and not ended within what is discarded
    while (HasNext()) {
        Abort::ThrowIfRequested();
        const Item& item = Take();
        if (item.type == TT_PRMLIST)
            ++calls;
        else if (item.type == TT_FUNCOP && calls > 0)
            --calls;
        else if (item.type == TT_FUNCOP || (item.type == TT_PRMSEP && calls == 0)) {
            terminator = item.type;
            if (item.type == TT_FUNCOP)
                GiveBack(item);
            return;
        }
    }
}

bool Evaluation::Fail(const EvaluatorError& error, int position, Item& result)
{
    result = Item::Error(error, position != -1 ? position : result.position);
    return false;
}

bool Evaluation::FailAsHost(const HostException& exception, Item& result)
{
    EEToken error;
    error.SetPosition(result.position);
    evaluator.TakeHostError(error, exception, exception.GetMessage());
    workspace.Keep(error, result);
    return false;
}

/// The operand does not serve. Where it is no value, its own error becomes that of the level.
bool Evaluation::Refuse(const Item& operand, const Refusal& refusal, Item& result)
{
    if (refusal.error)
        return Fail(*refusal.error, refusal.position, result);
    Try([&] { TakeError(operand, result); }, result);
    return false;
}

void Evaluation::TakeError(const Item& operand, Item& result)
{
    const WString text(operand.GetText());
    WString message = text;
    unsigned int code = operand.errorCode;
    if (operand.isMissing) {
        evaluator.record.missingVariable = PruneVariableName(text);
        message = GenerateMissingVariableMessage(text);
        code = Errors::MissingVariable.number;
    } else {
        message.Replace(L"%t", text, true);
    }
    const int position = operand.position != -1 ? operand.position : result.position;
    result = Item::Error(code, workspace.texts.Copy(message.View()), position);
    result.isMissing = operand.isMissing;
}
