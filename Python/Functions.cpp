#include "Functions.h"

#include "ExpressionEvaluatorException.h"
#include "ExpressionEvaluatorFunctions.h"
#include "Failure.h"
#include "Runs.h"
#include "Text/HostError.h"

namespace {
/// What is called may take up to this number of arguments, any number when it is negative.
struct Definition
{
    PyObject* callable; // never given back: the table of functions outlives Python
    int least;
    int most;
};

class PythonFunction : public EEFunction
{
public:
    PythonFunction(const WString& name, const Definition& definition)
        : EEFunction(name.ToCString(), -1), definition(definition)
    {}
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments) override;
    void Redefine(const Definition& newDefinition);

private:
    Definition definition;

    void CheckCount(int count, int position) const;
    py::object Call(EETokenStack& arguments) const;
    [[noreturn]] void FailByPython(py::error_already_set& exception, int position) const;
};

/// Keeps calls of Python out of each other as deep as Python itself allows.
class PythonLevel
{
public:
    PythonLevel()
    {
        if (Py_EnterRecursiveCall(" in a function of an expression") != 0)
            throw py::error_already_set();
    }
    ~PythonLevel() { Py_LeaveRecursiveCall(); }
    PythonLevel(const PythonLevel&) = delete;
    PythonLevel& operator=(const PythonLevel&) = delete;
};
} // namespace

/// Its own words, of an Error of labshell the message; without any, or when it cannot even say them, the name of its
/// class.
static WString Describe(const py::error_already_set& exception)
{
    WString text;
    try {
        const bool isOwn = exception.matches(py::module_::import("labshell._errors").attr("Error"));
        text = ToText(isOwn ? py::object(exception.value().attr("message")) : py::str(exception.value()));
    } catch (const std::exception&) {
    }
    return text.IsEmpty() ? WString::FromUtf8(reinterpret_cast<PyTypeObject*>(exception.type().ptr())->tp_name) : text;
}

void PythonFunction::Redefine(const Definition& newDefinition)
{
    const py::object former =
        py::reinterpret_steal<py::object>(definition.callable); // which may do anything at its end
    definition = newDefinition;
}

void PythonFunction::CheckCount(int count, int position) const
{
    if (count >= definition.least && (definition.most < 0 || count <= definition.most))
        return;
    WString range = WString::Format(L"%d", definition.least);
    if (definition.most != definition.least)
        range += definition.most < 0 ? WString(L" or more") : WString::Format(L" to %d", definition.most);
    throw ExpressionEvaluatorException(
        pythonError, WString::Format(L"%s takes %s arguments, not %d", GetName(), range, count), position);
}

py::object PythonFunction::Call(EETokenStack& arguments) const
{
    const PythonLevel level;
    py::tuple values(static_cast<std::size_t>(arguments.Count()));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const EEToken& argument = arguments.Pop();
        argument.RethrowError();
        values[i] = ToPython(argument);
    }
    return py::reinterpret_borrow<py::function>(definition.callable)(*values);
}

/// What is no Exception, as an interrupt, is to end all that runs; it is raised again at the end of that.
void PythonFunction::FailByPython(py::error_already_set& exception, int position) const
{
    Failure::Keep(exception);
    if (!exception.matches(PyExc_Exception))
        throw HostException(HostError::Aborted);
    throw ExpressionEvaluatorException(pythonError, GetName() + L": " + Describe(exception), position);
}

void PythonFunction::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const int position = result.GetPosition();
    CheckCount(arguments.Count(), position);
    const py::gil_scoped_acquire python;
    try {
        const py::object value = Call(arguments);
        if (value.is_none())
            result.SetNA();
        else
            SetValue(result, value);
    } catch (py::error_already_set& exception) {
        FailByPython(exception, position);
    } catch (const py::builtin_exception& exception) {
        throw ExpressionEvaluatorException(
            pythonError, GetName() + L": " + WString::FromUtf8(exception.what()), position);
    }
}

void Functions::Add(const py::str& name, const py::function& callable, int least, int most)
{
    const WString text = ToText(name);
    if (!IsName(text, L"._"))
        throw py::value_error("a function's name has up to 63 letters of English, digits, '_' and '.', a letter first");
    Running::RequireNone("a function cannot be defined");
    EEFunction* const former = fnTable_gb.FindOrNull(text.View());
    auto* const own = dynamic_cast<PythonFunction*>(former);
    if (former && !own)
        throw py::value_error("there is a function of that name already");
    const Definition definition{callable.inc_ref().ptr(), least, most};
    if (own)
        own->Redefine(definition);
    else
        fnTable_gb.AddFn(new PythonFunction(text, definition));
}
