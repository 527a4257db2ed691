#pragma once

#include "EvaluatorErrors.h"
#include "ExpressionEvaluatorApi.h"
#include "Text/ExitCode.h"
#include "Text/WString.h"

#include <exception>

class EEToken;

/// The evaluator's number in exit codes.
constexpr unsigned short evaluatorModule = 505;

/// An error inside one evaluation: its number, message and place. Thrown by value, caught by reference within the
/// engine.
class EE_API ExpressionEvaluatorException : public std::exception
{
public:
    ExpressionEvaluatorException(unsigned int code, const wchar_t* message, int position);
    ExpressionEvaluatorException(unsigned int code, const WString& message, int position);
    ExpressionEvaluatorException(const EvaluatorError& error, int position)
        : ExpressionEvaluatorException(error.number, error.message, position)
    {}
    /// Every "%t" of the message, in any case, becomes the token's text; a null token leaves it.
    ExpressionEvaluatorException(unsigned int code, const wchar_t* message, const EEToken* token, int position);

    unsigned int GetCode() const noexcept { return code; }
    const WString& GetMessage() const noexcept { return message; }
    int GetPosition() const noexcept { return position; } // a token's, from 1; 0 or -1 where there is none

private:
    unsigned int code;
    WString message;
    int position;
};

/// Always throws: the code, or (0, 505, 132) when the code's number is 0.
[[noreturn]] EE_API void CheckAndThrowExitCode(const ExitCode& code);
