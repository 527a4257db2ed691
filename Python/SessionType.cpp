#include "SessionType.h"

#include "Failure.h"

#include <new>
#include <utility>

namespace {
struct SessionObject
{
    PyObject_HEAD std::shared_ptr<Session> session;
};
} // namespace

static PyTypeObject* type_lc = nullptr;

static std::shared_ptr<Session>& SessionOf(PyObject* self)
{
    return reinterpret_cast<SessionObject*>(self)->session;
}

static PyObject* Make(PyTypeObject* type, bool readsEnvironment)
{
    return Failure::Guard([&] {
        auto session = std::make_shared<Session>(readsEnvironment);
        PyObject* const self = type->tp_alloc(type, 0);
        if (self)
            new (&SessionOf(self)) std::shared_ptr<Session>(std::move(session));
        return self;
    });
}

/// Of the arguments of derived classes it needs none.
static PyObject* New(PyTypeObject* type, PyObject*, PyObject*)
{
    return Make(type, false);
}

static PyObject* MakeForCommands(PyObject*, PyObject*)
{
    return Make(type_lc, true);
}

static void Delete(PyObject* self)
{
    PyTypeObject* const type = Py_TYPE(self);
    std::destroy_at(&SessionOf(self));
    type->tp_free(self);
    Py_DECREF(type);
}

static PyObject* Evaluate(PyObject* self, PyObject* arguments, PyObject* keywords)
{
    static const char* const names[] = {"expression", nullptr};
    PyObject* expression = nullptr;
    if (!keywords && PyTuple_GET_SIZE(arguments) == 1 && PyUnicode_Check(PyTuple_GET_ITEM(arguments, 0)))
        expression = PyTuple_GET_ITEM(arguments, 0);
    else if (!PyArg_ParseTupleAndKeywords(arguments, keywords, "U:evaluate", const_cast<char**>(names), &expression))
        return nullptr;
    return Failure::Guard(
        [&] { return SessionOf(self)->Evaluate(py::reinterpret_borrow<py::str>(expression)).release().ptr(); });
}

static PyObject* Run(PyObject* self, PyObject* line)
{
    if (!PyUnicode_Check(line))
        return PyErr_Format(PyExc_TypeError, "a command line is a str, not %.200s", Py_TYPE(line)->tp_name);
    return Failure::Guard([&] { return SessionOf(self)->Run(py::reinterpret_borrow<py::str>(line)).release().ptr(); });
}

static PyObject* GetTrace(PyObject* self, PyObject*)
{
    return Failure::Guard([&] { return SessionOf(self)->GetTrace().release().ptr(); });
}

static PyObject* AddFlags(PyObject* self, PyObject* flags)
{
    const unsigned long bits = PyLong_AsUnsignedLong(flags);
    if (PyErr_Occurred())
        return nullptr;
    return Failure::Guard([&] {
        SessionOf(self)->AddFlags(static_cast<unsigned int>(bits));
        return py::none().release().ptr();
    });
}

/// As Python's table of methods wants it, which tells by the flags beside it what it takes.
static PyCFunction ToMethod(PyObject* (*function)(PyObject*, PyObject*, PyObject*))
{
    return reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(function));
}

static PyMethodDef methods_lc[] = {
    {"evaluate", ToMethod(Evaluate), METH_VARARGS | METH_KEYWORDS,
        "evaluate($self, /, expression)\n--\n\n"
        "The value of the expression: a float, a bool or a str. Without one it is an Error."},
    {"_run", Run, METH_O, nullptr},
    {"_trace", GetTrace, METH_NOARGS, nullptr},
    {"_add_flags", AddFlags, METH_O, nullptr},
    {},
};

static PyType_Slot slots_lc[] = {
    {Py_tp_doc, const_cast<char*>("An evaluator with its variables.")},
    {Py_tp_new, reinterpret_cast<void*>(New)},
    {Py_tp_dealloc, reinterpret_cast<void*>(Delete)},
    {Py_tp_call, reinterpret_cast<void*>(Evaluate)},
    {Py_tp_methods, methods_lc},
    {},
};

static PyType_Spec spec_lc = {
    "labshell._labshell.Session", sizeof(SessionObject), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots_lc};

static PyMethodDef functions_lc[] = {
    {"make_command_session", MakeForCommands, METH_NOARGS, nullptr},
    {},
};

void SessionType::AddTo(py::module_& module)
{
    type_lc = reinterpret_cast<PyTypeObject*>(PyType_FromSpec(&spec_lc));
    if (!type_lc || PyModule_AddType(module.ptr(), type_lc) != 0 ||
        PyModule_AddFunctions(module.ptr(), functions_lc) != 0)
        throw py::error_already_set();
}

const std::shared_ptr<Session>& SessionType::Get(py::handle object)
{
    if (!PyObject_TypeCheck(object.ptr(), type_lc))
        throw py::type_error("that has no variables");
    return SessionOf(object.ptr());
}
