#include "ExpressionEvaluator.h"

#include "Commands/CommandRunner.h"
#include "EEMissingVariableException.h"
#include "ExpressionEvaluatorFunctions.h"
#include "OperatorTable.h"
#include "Text/Abort.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <new>
#include <utility>

namespace {
/// Numbers closer than this are equal, whatever their size.
constexpr double equalityTolerance = 10 * std::numeric_limits<double>::epsilon();

// An operation takes its operands off the stack and puts its value there; `result` brings the operator's position. The
// right operand is on top and is read first, unless said otherwise.

template <typename Value>
void Give(Value value, EEToken& result, EETokenStack& operands)
{
    result.SetValue(value);
    operands.Push(result);
}

template <typename Operation>
void Calculate(EEToken& result, EETokenStack& operands)
{
    const double right = operands.PopNumber();
    const double left = operands.PopNumber();
    Give(Operation()(left, right), result, operands);
}

struct Power
{
    double operator()(double base, double exponent) const { return std::pow(base, exponent); }
};

void Divide(EEToken& result, EETokenStack& operands)
{
    const EEToken& divisor = operands.Pop();
    const double right = divisor.GetNumber();
    if (right == 0)
        throw ExpressionEvaluatorException(Errors::DivideByZero, divisor.GetPosition());
    Give(operands.PopNumber() / right, result, operands);
}

void Negate(EEToken& result, EETokenStack& operands)
{
    Give(-operands.PopNumber(), result, operands);
}

/// The right text is appended to the left one where it is, so that a chain from the left costs no more
/// than its texts.
void Concatenate(EEToken& result, EETokenStack& operands)
{
    const WString right = operands.Pop().GetWString(true);
    EEToken left = std::move(operands.Pop());
    left.AppendText(right);
    left.SetPosition(result.GetPosition());
    operands.Push(std::move(left));
}

/// Ordering reads the left operand first.
template <typename Operation>
void Order(EEToken& result, EETokenStack& operands)
{
    const EEToken right = std::move(operands.Pop());
    const double left = operands.PopNumber();
    Give(Operation()(left, right.GetNumber()), result, operands);
}

template <typename Operation>
void Combine(EEToken& result, EETokenStack& operands)
{
    const bool right = operands.PopBool();
    const bool left = operands.PopBool();
    Give(Operation()(left, right), result, operands);
}

/// Equality of two numbers, or else of two texts in any case. "=" takes only texts as texts, "<>" converts: so 5 <> "x"
/// is true while 5 = "x" is a type mismatch.
bool AreEqual(EETokenStack& operands, bool convert)
{
    const EEToken right = std::move(operands.Pop());
    const EEToken& left = operands.Pop();
    double rightNumber = 0;
    double leftNumber = 0;
    if (right.TryCast(rightNumber) && left.TryCast(leftNumber))
        return std::fabs(leftNumber - rightNumber) < equalityTolerance;
    const WString rightText = right.GetWString(convert);
    return left.GetWString(convert).Equals(rightText.View(), true);
}

void Equal(EEToken& result, EETokenStack& operands)
{
    Give(AreEqual(operands, false), result, operands);
}

void Differ(EEToken& result, EETokenStack& operands)
{
    Give(!AreEqual(operands, true), result, operands);
}

struct OperationRow
{
    std::wstring_view name;
    void (*apply)(EEToken& result, EETokenStack& operands);
};

constexpr wchar_t unaryMinusName_lc[] = {unaryMinus, 0};

constexpr OperationRow operations_lc[] = {
    {L"+", Calculate<std::plus<>>},
    {L"-", Calculate<std::minus<>>},
    {L"*", Calculate<std::multiplies<>>},
    {L"/", Divide},
    {L"^", Calculate<Power>},
    {unaryMinusName_lc, Negate},
    {L"&", Concatenate},
    {L"=", Equal},
    {L"<>", Differ},
    {L"<", Order<std::less<>>},
    {L">", Order<std::greater<>>},
    {L"<=", Order<std::less_equal<>>},
    {L">=", Order<std::greater_equal<>>},
    {L"and", Combine<std::logical_and<>>},
    {L"or", Combine<std::logical_or<>>},
    {L"xor", Combine<std::not_equal_to<>>},
};

constexpr bool HasOperation(const OperatorRow& row)
{
    for (const OperationRow& operation : operations_lc)
        if (operation.name == row.name)
            return true;
    return false;
}

static_assert(std::all_of(std::begin(operatorTable_gb), std::end(operatorTable_gb) - 1, HasOperation));

const OperationRow* FindOperation(std::wstring_view name)
{
    for (const OperationRow& row : operations_lc)
        if (EqualsIgnoreCase(name, row.name))
            return &row;
    return nullptr;
}

/// Replaces the operator's operands by its value. A longer text that is no operator's is skipped. Out of line, because
/// the recursion of calls within calls runs through the caller's stack frame.
[[gnu::noinline]] void ApplyOperator(const EEToken& token, EEToken& result, EETokenStack& operands)
{
    const bool isCharacter = token.GetText().Length() == 1 && token.GetType() != TT_NONE;
    if (!isCharacter && token.GetType() == TT_UNARYOP)
        throw ExpressionEvaluatorException(Errors::InvalidUnaryOperator, 0);
    if (!isCharacter && token.GetType() != TT_BINARYOP)
        return;
    const OperationRow* operation = FindOperation(token.GetText().View());
    if (!operation)
        throw ExpressionEvaluatorException(
            isCharacter ? Errors::InvalidOperatorCharacter : Errors::InvalidBinaryOperator, token.GetPosition());
    operation->apply(result, operands);
}

/// One call more as long as it lives.
class Level
{
public:
    explicit Level(int& depth) : depth(depth) { ++depth; }
    ~Level() { --depth; }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

private:
    int& depth;
};
} // namespace

/// While a function runs. When it has evaluated something else, the record of the evaluation that called it comes back
/// in the end.
class ExpressionEvaluator::RunningCall
{
public:
    explicit RunningCall(ExpressionEvaluator& evaluator)
        : evaluator(evaluator), enclosing(std::exchange(evaluator.keptRecord, &kept))
    {}
    ~RunningCall()
    {
        evaluator.keptRecord = enclosing;
        if (kept)
            evaluator.record = std::move(*kept);
    }
    RunningCall(const RunningCall&) = delete;
    RunningCall& operator=(const RunningCall&) = delete;

private:
    ExpressionEvaluator& evaluator;
    std::optional<Record> kept;
    std::optional<Record>* const enclosing;
};

bool ExpressionEvaluator::EvaluatePostfixExpr(EEToken& result, EETokenStack& postfix)
{
    int terminator = TT_END;
    const bool succeeded = EvaluatePostfixSubExpr(result, postfix, &terminator);
    if (!RecordValue(result) || !succeeded)
        return false;
    if (terminator == TT_END && postfix.IsEmpty())
        return true;
    ErrMsg(ExpressionEvaluatorException(terminator == TT_END ? Errors::UnexpectedStackEnd : Errors::UnexpectedEnd, 0));
    return false;
}

/// True unless the value is an error, which is recorded.
bool ExpressionEvaluator::RecordValue(const EEToken& value)
{
    ExitCode code;
    WString message;
    int position = 0;
    if (!value.TryGetErrorMessage(code, message, position))
        return true;
    if (value.IsMissingVariable())
        record.missingVariable = PruneVariableName(value.GetText());
    ErrMsg(code, position, message.ToCString());
    return false;
}

/// Every error of the level becomes an error value of its result, so that an enclosing call can test it.
bool ExpressionEvaluator::EvaluatePostfixSubExpr(EEToken& result, EETokenStack& postfix, int* terminator)
{
    result.ClearError();
    result.SetException(Errors::Unevaluated.number, Errors::Unevaluated.message);
    *terminator = TT_END;
    try {
        return EvaluateTokens(result, postfix, terminator);
    } catch (...) {
        TakeThrown(result);
    }
    OnErrorCleanupPostfixStack(postfix, terminator);
    return false;
}

/// Turns the exception that is being handled into an error value. What ends the evaluation as a whole passes on; so
/// does the lack of memory, which may have come up anywhere.
void ExpressionEvaluator::TakeThrown(EEToken& result)
{
    try {
        throw;
    } catch (const EEMissingVariableException& exception) {
        record.missingVariable = exception.GetVariableName();
        result.SetMissingVariable(record.missingVariable);
        result.SetException(exception);
    } catch (const ExpressionEvaluatorException& exception) {
        result.SetException(exception);
    } catch (const HostException& exception) {
        if (CommandRunner::EndsCallers(exception))
            throw;
        TakeHostError(result, exception, exception.GetMessage());
    } catch (const ExitCode& code) {
        if (CommandRunner::EndsCallers(code))
            throw;
        result.SetException(Errors::HostExitCode.number, code.ToString());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& exception) {
        const HostException unexpected(HostError::UnexpectedException, WString::FromUtf8(exception.what()));
        TakeHostError(result, unexpected, unexpected.GetMessage());
    } catch (...) {
        const HostException unexpected(HostError::UnexpectedException);
        TakeHostError(result, unexpected, unexpected.GetMessage());
    }
}

void ExpressionEvaluator::TakeHostError(EEToken& result, const ExitCode& code, const WString& reason)
{
    result.SetException(Errors::HostExitCode.number, code.ToString());
    record.reasons.push_back({result.GetPosition(), code, reason});
}

bool ExpressionEvaluator::EvaluateTokens(EEToken& result, EETokenStack& postfix, int* terminator)
{
    EETokenStack operands;
    while (!postfix.IsEmpty()) {
        Abort::ThrowIfRequested();
        const EEToken& top = postfix.Peek();
        result.SetPosition(top.GetPosition());
        if (top.GetType() == TT_OPERAND) {
            postfix.MoveTopTo(operands);
            continue;
        }
        EEToken& token = postfix.Pop();
        switch (token.GetType()) {
        case TT_PRMLIST:
            if (!EvaluateCall(result.GetPosition(), postfix, operands)) {
                OnErrorCleanupPostfixStack(postfix, terminator);
                return false;
            }
            break;
        case TT_FUNCOP: postfix.Push(token); [[fallthrough]];
        case TT_PRMSEP: *terminator = token.GetType(); return TakeResult(result, operands);
        default: ApplyOperator(token, result, operands);
        }
    }
    return TakeResult(result, operands);
}

/// Evaluates the arguments of the call at `position`, and then its function.
bool ExpressionEvaluator::EvaluateCall(int position, EETokenStack& postfix, EETokenStack& operands)
{
    if (callDepth == maxCallDepth) { // a stack that no converter made, which has the same limit
        ErrMsg(ExpressionEvaluatorException(Errors::NestedTooDeeply, position));
        return false;
    }
    const Level level(callDepth);
    EETokenStack arguments;
    if (EvaluateArguments(arguments, postfix) == TT_FUNCOP)
        return CallFunction(postfix.Pop(), position, arguments, operands);
    const EvaluatorError& error = Errors::FunctionTokenExpected;
    ErrMsg(ExitCode(0, evaluatorModule, error.number), position, error.message);
    return false;
}

/// Evaluates each argument as a level of its own and returns what ended the last one. A failed argument becomes an
/// error value.
int ExpressionEvaluator::EvaluateArguments(EETokenStack& arguments, EETokenStack& postfix)
{
    int ended = TT_PRMSEP;
    while (ended == TT_PRMSEP) {
        EEToken argument;
        if (!EvaluatePostfixSubExpr(argument, postfix, &ended) && argument.IsValued())
            TakeRecordedError(argument);
        arguments.Put(std::move(argument));
    }
    return ended;
}

bool ExpressionEvaluator::CallFunction(
    const EEToken& function, int position, EETokenStack& arguments, EETokenStack& operands)
{
    const WString& name = function.GetText();
    EEFunction* implementation = fnTable_gb.FindOrNull(name.View());
    if (!implementation) {
        ErrMsg(ExpressionEvaluatorException(Errors::UnknownFunction.number,
            WString::Format(Errors::UnknownFunction.message, name), function.GetPosition()));
        return false;
    }
    EEToken value;
    value.SetPosition(position);
    RunFunction(*implementation, value, arguments);
    LogIfEnabled(L"Function:", name, value);
    operands.Push(std::move(value));
    return true;
}

/// A function that caught an abort, or evaluated what was ended by one, does not hide it, whatever it answers or
/// throws.
void ExpressionEvaluator::ThrowIfEnded() const
{
    Abort::ThrowIfRequested();
    if (CommandRunner::EndsCallers(record.code))
        throw ExitCode(record.code);
}

/// Out of line, because the recursion of calls within calls runs through the caller's stack frame.
[[gnu::noinline]] void ExpressionEvaluator::RunFunction(EEFunction& function, EEToken& value, EETokenStack& arguments)
{
    const RunningCall call(*this);
    try {
        function.Evaluate(value, arguments, this);
    } catch (...) {
        ThrowIfEnded();
        throw;
    }
    ThrowIfEnded();
    if (value.GetType() != TT_OPERAND)
        value.SetException(Errors::Unevaluated.number, Errors::Unevaluated.message);
}

/// Turns an argument that had got a value before it failed into the recorded error.
void ExpressionEvaluator::TakeRecordedError(EEToken& argument) const
{
    const bool ours = record.code.GetModule() == evaluatorModule;
    argument.SetException(ours ? record.code.GetNumber() : Errors::ForeignArgumentError.number, record.message);
    argument.SetPosition(record.position);
}

/// The level's value is its one operand.
bool ExpressionEvaluator::TakeResult(EEToken& result, EETokenStack& operands)
{
    result = std::move(operands.Pop());
    if (operands.IsEmpty())
        return true;
    while (operands.Count() > 1)
        operands.Pop();
    ErrMsg(ExpressionEvaluatorException(Errors::UnexpectedToken, operands.Pop().GetPosition()));
    return false;
}

bool ExpressionEvaluator::OnErrorCleanupPostfixStack(EETokenStack& postfix, int* terminator)
{
    int calls = 0; // begun and not ended within what is discarded
    while (!postfix.IsEmpty()) {
        Abort::ThrowIfRequested();
        EEToken& token = postfix.Pop();
        if (token.GetType() == TT_PRMLIST)
            ++calls;
        else if (token.GetType() == TT_FUNCOP && calls > 0)
            --calls;
        else if (token.GetType() == TT_FUNCOP || (token.GetType() == TT_PRMSEP && calls == 0)) {
            *terminator = token.GetType();
            if (*terminator == TT_FUNCOP)
                postfix.Push(token);
            return true;
        }
    }
    return true;
}
