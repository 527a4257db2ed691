#pragma once

#include "Conversions.h"
#include "Text/ExitCode.h"

/// How failures of the product and exceptions of Python become each other.
namespace Failure {
/// ExitCode, the class of labshell.
py::object ToPython(const ExitCode& code);

/// Raises an exception class of labshell, made with the code and the details. What Python itself has raised within
/// goes first: an interrupt is raised instead, and any other exception is told as the cause.
[[noreturn]] void RaiseMade(const char* exceptionClass, const ExitCode& code, const py::tuple& details);
template <typename... Details>
[[noreturn]] void Raise(const char* exceptionClass, const ExitCode& code, const Details&... details)
{
    RaiseMade(exceptionClass, code, py::make_tuple(ToPython(code), details...));
}

/// Keeps the exception that a function of Python has raised within an expression of this thread.
void Keep(py::error_already_set& exception);
/// Lets go of what was kept.
void Forget();
} // namespace Failure

/// The number of the evaluator's error for an exception of a function of Python.
constexpr unsigned int pythonError = 10000;
