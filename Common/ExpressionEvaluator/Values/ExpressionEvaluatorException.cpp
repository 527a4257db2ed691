#include "ExpressionEvaluatorException.h"

#include "EEToken.h"

ExpressionEvaluatorException::ExpressionEvaluatorException(unsigned int code, const wchar_t* message, int position)
    : code(code), message(message), position(position)
{}

ExpressionEvaluatorException::ExpressionEvaluatorException(unsigned int code, const WString& message, int position)
    : code(code), message(message), position(position)
{}

ExpressionEvaluatorException::ExpressionEvaluatorException(
    unsigned int code, const wchar_t* message, const EEToken* token, int position)
    : code(code), message(message), position(position)
{
    if (token)
        this->message.Replace(L"%t", token->ToString(), true);
}

void CheckAndThrowExitCode(const ExitCode& code)
{
    if (code.IsError())
        throw code;
    throw ExitCode(0, evaluatorModule, Errors::Unrecorded.number);
}
