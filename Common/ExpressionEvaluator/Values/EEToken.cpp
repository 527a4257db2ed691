#include "EEToken.h"

#include "EEMissingVariableException.h"
#include "Item.h"

std::atomic<int> EEToken::liveCount{0};

int GetDebugObjectCountExpressionEvaluator_EEToken()
{
    return EEToken::liveCount;
}

EEToken& EEToken::operator=(EEToken* other)
{
    if (other)
        return *this = *other;
    *this = EEToken();
    SetNA();
    return *this;
}

void EEToken::SetItem(const Item& item)
{
    const std::wstring_view newText = item.GetText();
    text.Assign(newText.data(), newText.size());
    type = item.type;
    dataType = item.dataType;
    priority = -1;
    position = item.position;
    missingVariable = item.isMissing;
    errorCode = 0;
    if (type != TT_OPERAND)
        return;
    if (dataType == DT_NUM)
        number = item.number;
    else if (dataType == DT_BOOL)
        boolValue = item.truth;
    else
        errorCode = item.errorCode;
}

void EEToken::SetToken(int newType, const wchar_t* newText)
{
    SetType(newType);
    text = newText;
    missingVariable = false;
}

void EEToken::SetToken(int newType, wchar_t ch)
{
    SetType(newType);
    text.Assign(&ch, ch != 0);
    missingVariable = false;
}

void EEToken::SetType(int newType) noexcept
{
    type = newType;
    priority = -1;
}

void EEToken::SetOperand(int newDataType) noexcept
{
    type = TT_OPERAND;
    dataType = newDataType;
}

void EEToken::SetValue(const WString& value)
{
    SetOperand(DT_STR);
    text = value;
    missingVariable = false;
}

void EEToken::SetValue(const wchar_t* value)
{
    SetOperand(DT_STR);
    text = value;
    missingVariable = false;
}

void EEToken::SetValue(double value)
{
    SetOperand(DT_NUM);
    number = value;
    text.Clear();
    missingVariable = false;
}

void EEToken::SetValue(bool value)
{
    SetOperand(DT_BOOL);
    boolValue = value;
    text.Clear();
    missingVariable = false;
}

void EEToken::SetNA()
{
    SetOperand(DT_NONE);
    text = L"#NA";
}

void EEToken::SetTypeErr()
{
    SetOperand(DT_ERR);
    text = L"#TYPE";
}

void EEToken::SetException(unsigned int code, const WString& message)
{
    SetOperand(DT_ERR);
    text = message;
    errorCode = code;
}

void EEToken::SetException(const ExpressionEvaluatorException& exception)
{
    SetException(exception.GetCode(), exception.GetMessage());
    if (exception.GetPosition() != -1)
        position = exception.GetPosition();
}

void EEToken::SetMissingVariable(const WString& name)
{
    SetOperand(DT_ERR);
    missingVariable = true;
    text = name;
}

void EEToken::ClearError() noexcept
{
    errorCode = 0;
    missingVariable = false;
}

static int FindPriority(int type, std::wstring_view text)
{
    const OperatorRow* const row = type == TT_FUNCOP ? nullptr : FindOperator(text);
    return row ? row->priority : noOperatorPriority;
}

int EEToken::GetPriority()
{
    if (priority == -1 && type != TT_OPERAND)
        priority = FindPriority(type, text.View());
    return priority;
}

bool EEToken::IsNa() const noexcept
{
    return type != TT_OPERAND || dataType == DT_NONE || missingVariable;
}

void EEToken::RethrowError() const
{
    if (IsValued())
        return;
    if (missingVariable)
        throw EEMissingVariableException(text, position);
    throw ExpressionEvaluatorException(errorCode, text.ToCString(), this, position);
}

bool EEToken::TryGetErrorMessage(ExitCode& code, WString& message, int& errorPosition) const
{
    if (dataType != DT_ERR)
        return false;
    if (errorCode == Errors::HostExitCode.number) {
        if (!ExitCode::TryParse(text, code))
            code = ExitCode(0, evaluatorModule, errorCode);
        message = L"#Error: " + text;
    } else {
        const EvaluatorError& unnumbered = missingVariable ? Errors::MissingVariable : Errors::UnnamedError;
        code = ExitCode(0, evaluatorModule, errorCode != 0 ? errorCode : unnumbered.number);
        message = text;
    }
    errorPosition = position;
    return true;
}
