// What an evaluation records besides its value: its first error, why the host failed, the variable that was missing.

#include "Commands/CommandRunner.h"
#include "EEMissingVariableException.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorFunctions.h"
#include "Item.h"
#include "Text/Abort.h"
#include "Text/HostError.h"
#include "Workspace.h"

#include <new>
#include <utility>

void ExpressionEvaluator::Record::Clear() noexcept
{
    message.Clear();
    code = ExitCode();
    position = 0;
    expressionStart = nullptr;
    missingVariable.Clear();
    reasons.clear();
}

/// Records the exception that is being handled in place of any other error, and returns false. What it needs in the end
/// is a message so short that it takes no memory.
bool ExpressionEvaluator::RecordThrown() noexcept
{
    ExitCode code(0, ExitCode::hostModule, static_cast<unsigned int>(HostError::UnexpectedException));
    const wchar_t* message = GetHostMessage(code);
    try {
        throw;
    } catch (const ExitCode& thrown) {
        code = thrown;
        message = GetHostMessage(code);
    } catch (const std::bad_alloc&) {
        code = ExitCode(0, ExitCode::hostModule, static_cast<unsigned int>(HostError::OutOfMemory));
        message = outOfMemoryMessage;
    } catch (...) {
    }
    record.code = ExitCode();
    try {
        ErrMsg(code, 0, message);
    } catch (...) {
        record.message = outOfMemoryMessage;
    }
    return false;
}

/// An evaluation that a running function asks for has a record of its own; that of the outer one is kept meanwhile.
void ExpressionEvaluator::StartRecord()
{
    if (keptRecord)
        ThrowIfEnded(); // by what the function evaluated before
    if (keptRecord && !*keptRecord)
        keptRecord->emplace(std::move(record));
    record.Clear();
}

bool ExpressionEvaluator::TryGetErrorMessage(ExitCode& code, WString& message, int* position) const
{
    if (record.message.IsEmpty())
        return false;
    message = record.message;
    code = record.code;
    if (position)
        *position = record.position;
    return true;
}

bool ExpressionEvaluator::TryGetErrorMessage(ExitCode& code, WString& message, WString& marker) const
{
    if (record.message.IsEmpty() && !record.code.IsError())
        return false;
    code = record.code;
    message = record.message;
    if (message.IsEmpty())
        message = WString::Format(L"NA - Missing error message - ExitCode: %s", code.ToCString());
    marker = WString(record.position > 1 ? static_cast<std::size_t>(record.position - 1) : 0, L' ');
    marker += L'^';
    return true;
}

bool ExpressionEvaluator::TryGetErrorReason(WString& reason) const
{
    for (const Reason& known : record.reasons)
        if (known.position == record.position && known.code == record.code) {
            reason = known.text;
            return true;
        }
    return false;
}

bool ExpressionEvaluator::TryGetMissingVariableName(WString& name) const
{
    name = record.missingVariable;
    return !name.IsEmpty();
}

void ExpressionEvaluator::ErrMsg(const ExitCode& code, int position, const wchar_t* message)
{
    if (record.code.IsError())
        return;
    record.code = code;
    record.position = position;
    record.message = message;
    if (record.message.IsEmpty())
        record.message = code.ToString();
}

void ExpressionEvaluator::ErrMsg(unsigned int number, const wchar_t* at, const wchar_t* message)
{
    const bool isPlace = at && record.expressionStart;
    ErrMsg(ExitCode(0, evaluatorModule, number), isPlace ? static_cast<int>(at - record.expressionStart) : 0, message);
}

void ExpressionEvaluator::ErrMsg(const ExpressionEvaluatorException& exception)
{
    ErrMsg(
        ExitCode(0, evaluatorModule, exception.GetCode()), exception.GetPosition(), exception.GetMessage().ToCString());
}

bool ExpressionEvaluator::Fail(const EvaluatorError& error, const wchar_t* at)
{
    ErrMsg(error.number, at, error.message);
    return false;
}

/// True unless the value is an error, which is recorded.
bool ExpressionEvaluator::RecordValue(const EEToken& value)
{
    if (value.GetDataType() != DT_ERR)
        return true;
    ExitCode code;
    WString message;
    int position = 0;
    value.TryGetErrorMessage(code, message, position);
    if (value.IsMissingVariable())
        record.missingVariable = PruneVariableName(value.GetText());
    ErrMsg(code, position, message.ToCString());
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

/// The recorded error as a value.
Item ExpressionEvaluator::GetRecordedError() const
{
    const bool isOwn = record.code.GetModule() == evaluatorModule;
    const unsigned int number = isOwn ? record.code.GetNumber() : Errors::ForeignArgumentError.number;
    return Item::Error(number, workspace->texts.Copy(record.message.View()), record.position);
}

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

void ExpressionEvaluator::RunFunction(EEFunction& function, EEToken& value, EETokenStack& arguments)
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

/// A function that caught an abort, or evaluated what was ended by one, does not hide it, whatever it answers or
/// throws.
void ExpressionEvaluator::ThrowIfEnded() const
{
    Abort::ThrowIfRequested();
    if (CommandRunner::EndsCallers(record.code))
        throw ExitCode(record.code);
}
