#include "Failure.h"

#include "ExpressionEvaluatorException.h"
#include "Text/HostError.h"

#include <new>
#include <utility>

/// An object of Python or null.
static thread_local PyObject* kept_lc = nullptr;

static py::object TakeKept()
{
    return py::reinterpret_steal<py::object>(std::exchange(kept_lc, nullptr));
}

[[noreturn]] static void Throw(const py::object& exception)
{
    PyErr_SetObject(py::type::handle_of(exception).ptr(), exception.ptr());
    throw py::error_already_set();
}

static bool IsFromPython(const ExitCode& code)
{
    return code.GetModule() == evaluatorModule && code.GetNumber() == pythonError;
}

py::object Failure::ToPython(const ExitCode& code)
{
    return py::module_::import("labshell._errors")
        .attr("ExitCode")(code.GetCommandId(), code.GetModule(), code.GetNumber());
}

void Failure::RaiseMade(const char* exceptionClass, const ExitCode& code, const py::tuple& details)
{
    const py::object kept = TakeKept();
    if (IsHostError(code, HostError::Aborted)) {
        if (kept && PyObject_IsInstance(kept.ptr(), PyExc_Exception) == 0)
            Throw(kept);
        if (PyErr_CheckSignals() != 0)
            throw py::error_already_set();
    }
    const py::object exception = py::module_::import("labshell._errors").attr(exceptionClass)(*details);
    if (kept && IsFromPython(code))
        PyException_SetCause(exception.ptr(), kept.inc_ref().ptr());
    Throw(exception);
}

void Failure::Keep(py::error_already_set& exception)
{
    TakeKept();
    PyException_SetTraceback(exception.value().ptr(), exception.trace() ? exception.trace().ptr() : Py_None);
    kept_lc = exception.value().inc_ref().ptr();
}

Failure::Scope::Scope() : outer(std::exchange(kept_lc, nullptr)) {}

Failure::Scope::~Scope()
{
    Py_XDECREF(std::exchange(kept_lc, outer));
}

void Failure::Translate(const std::exception_ptr& thrown)
try {
    std::rethrow_exception(thrown);
} catch (const HostException& failure) {
    Raise("Error", failure, ToPython(failure.GetMessage()));
} catch (const ExitCode& code) {
    Raise("Error", code, py::str());
}

void Failure::Restore() noexcept
try {
    Translate(std::current_exception());
} catch (py::error_already_set& raised) {
    raised.restore();
} catch (const py::builtin_exception& raised) {
    raised.set_error();
} catch (const std::bad_alloc&) {
    PyErr_NoMemory();
} catch (const std::exception& failure) {
    PyErr_SetString(PyExc_RuntimeError, failure.what());
}
