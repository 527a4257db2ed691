#pragma once

#include "Conversions.h"
#include "Text/ExitCode.h"

#include <exception>

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

/// Keeps the exception that a function of Python has raised within an expression of this thread, for Raise.
void Keep(py::error_already_set& exception);
/// What is kept belongs to one evaluation or command line, which may be inside of another.
class Scope
{
public:
    Scope();
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

private:
    PyObject* const outer;
};

/// Throws the host's exception on as labshell.Error, and any other as it is.
[[noreturn]] void Translate(const std::exception_ptr& thrown);
/// Runs what may throw for an interface of Python, which no exception of C++ may pass: that is Python's then, and
/// `failed` the result.
template <typename Work, typename Result = PyObject*>
Result Guard(const Work& work, Result failed = nullptr) noexcept;
/// Makes what is being handled the exception of Python.
void Restore() noexcept;
} // namespace Failure

template <typename Work, typename Result>
Result Failure::Guard(const Work& work, Result failed) noexcept
try {
    return work();
} catch (...) {
    Restore();
    return failed;
}

/// The number of the evaluator's error for an exception of a function of Python.
constexpr unsigned int pythonError = 10000;
