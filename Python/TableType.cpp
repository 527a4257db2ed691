#include "TableType.h"

#include "Bench.h"
#include "Failure.h"
#include "SessionType.h"

#include <new>
#include <string_view>

namespace {
struct TableObject
{
    PyObject_HEAD std::unique_ptr<Table> table;
};
} // namespace

static std::unique_ptr<Table>& TableOf(PyObject* self)
{
    return reinterpret_cast<TableObject*>(self)->table;
}

static Table& Check(PyObject* self)
{
    Table& table = *TableOf(self);
    table.Check();
    return table;
}

/// The source is a Session for its variables, and a section for the settings.
static std::unique_ptr<Table> MakeTable(std::string_view kind, py::handle source)
{
    if (kind == "variables")
        return std::make_unique<VariableTable>(SessionType::Get(source));
    if (kind == "environment")
        return std::make_unique<EnvironmentTable>(SessionType::Get(source));
    if (kind == "config")
        return std::make_unique<ConfigTable>(ToText(source));
    if (kind == "status")
        return std::make_unique<StatusTableOfBench>();
    if (kind == "usage")
        return std::make_unique<UsageTable>();
    if (kind == "events")
        return std::make_unique<EventTable>();
    throw py::value_error("there is no table of that kind");
}

static PyObject* New(PyTypeObject* type, PyObject* arguments, PyObject*)
{
    const char* kind = nullptr;
    PyObject* source = Py_None;
    if (!PyArg_ParseTuple(arguments, "s|O", &kind, &source))
        return nullptr;
    return Failure::Guard([&] {
        auto table = MakeTable(kind, source);
        PyObject* const self = type->tp_alloc(type, 0);
        if (self)
            new (&TableOf(self)) std::unique_ptr<Table>(std::move(table));
        return self;
    });
}

static void Delete(PyObject* self)
{
    PyTypeObject* const type = Py_TYPE(self);
    std::destroy_at(&TableOf(self));
    type->tp_free(self);
    Py_DECREF(type);
}

static PyObject* GetItem(PyObject* self, PyObject* name)
{
    return Failure::Guard([&] {
        py::object value = Check(self).Get(ToText(name));
        if (!value)
            PyErr_SetObject(PyExc_KeyError, name);
        return value.release().ptr();
    });
}

/// A null value deletes the item.
static int SetItem(PyObject* self, PyObject* name, PyObject* value)
{
    return Failure::Guard(
        [&] {
            const WString text = ToText(name);
            if (value) {
                TableOf(self)->Set(text, value);
                return 0;
            }
            if (Check(self).TryDelete(text))
                return 0;
            PyErr_SetObject(PyExc_KeyError, name);
            return -1;
        },
        -1);
}

static int Contains(PyObject* self, PyObject* name)
{
    return Failure::Guard([&] { return PyUnicode_Check(name) && Check(self).Get(ToText(name)) ? 1 : 0; }, -1);
}

static Py_ssize_t Count(PyObject* self)
{
    return Failure::Guard([&] { return static_cast<Py_ssize_t>(Check(self).GetNames().Count()); }, Py_ssize_t{-1});
}

/// Goes over the names that are there now.
static PyObject* Iterate(PyObject* self)
{
    return Failure::Guard([&] { return PyObject_GetIter(ToPython(Check(self).GetNames()).ptr()); });
}

static PyType_Slot slots_lc[] = {
    {Py_tp_doc, const_cast<char*>("Named values.")},
    {Py_tp_new, reinterpret_cast<void*>(New)},
    {Py_tp_dealloc, reinterpret_cast<void*>(Delete)},
    {Py_tp_iter, reinterpret_cast<void*>(Iterate)},
    {Py_sq_contains, reinterpret_cast<void*>(Contains)},
    {Py_mp_length, reinterpret_cast<void*>(Count)},
    {Py_mp_subscript, reinterpret_cast<void*>(GetItem)},
    {Py_mp_ass_subscript, reinterpret_cast<void*>(SetItem)},
    {},
};

static PyType_Spec spec_lc = {
    "labshell._labshell.Table", sizeof(TableObject), 0, Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots_lc};

void TableType::AddTo(py::module_& module)
{
    const auto type = py::reinterpret_steal<py::object>(PyType_FromSpec(&spec_lc));
    if (!type || PyModule_AddType(module.ptr(), reinterpret_cast<PyTypeObject*>(type.ptr())) != 0)
        throw py::error_already_set();
}
