#include "Bench.h"
#include "Commands/CommandRegistry.h"
#include "Commands/PluginLoader.h"
#include "Failure.h"
#include "Functions.h"
#include "Runs.h"
#include "Session.h"
#include "Tables.h"
#include "Text/HostError.h"

#include <dlfcn.h>
#include <filesystem>
#include <string>

/// The folder of the plug-in that this module is linked to.
static std::filesystem::path GetPluginFolder()
{
    Dl_info info = {};
    dladdr(reinterpret_cast<const void*>(&GetRandomNumber), &info);
    return std::filesystem::path(info.dli_fname).parent_path();
}

/// The command Check, which few need.
static void LoadScriptTools()
try {
    const std::string file = GetPluginFolder() / "ScriptTools.dll";
    if (std::filesystem::exists(file))
        PluginLoader::Load(file);
} catch (const HostException&) { // it is an unknown command then
}

static void LoadPlugin()
try {
    PluginLoader::Load(GetPluginFolder() / "ExpressionEvaluator.dll");
    CommandRegistry::AddLater(LoadScriptTools);
} catch (const HostException& failure) {
    throw py::import_error(failure.GetMessage().ToUtf8());
}

/// One process has one instrument, and the functions of its expressions belong to one interpreter. Asks by Python's own
/// means: pybind11's would wait for a lock that another interpreter never has.
static PyObject* RequireMainInterpreter(PyObject*, PyObject*)
{
    if (PyInterpreterState_Get() == PyInterpreterState_Main())
        Py_RETURN_NONE;
    PyErr_SetString(PyExc_ImportError, "labshell serves the main interpreter alone");
    return nullptr;
}

/// A failure of the host outside of commands and evaluations.
static void Translate(std::exception_ptr thrown)
try {
    try {
        std::rethrow_exception(thrown);
    } catch (const HostException& failure) {
        Failure::Raise("Error", failure, ToPython(failure.GetMessage()));
    } catch (const ExitCode& code) {
        Failure::Raise("Error", code, py::str());
    }
} catch (py::error_already_set& raised) {
    raised.restore();
}

[[noreturn]] static void RaiseKeyError(const py::str& name)
{
    PyErr_SetObject(PyExc_KeyError, name.ptr());
    throw py::error_already_set();
}

static py::object GetItem(Table& table, const py::str& name)
{
    py::object value = table.Get(ToText(name));
    if (!value)
        RaiseKeyError(name);
    return value;
}

static void DeleteItem(Table& table, const py::str& name)
{
    if (!table.TryDelete(ToText(name)))
        RaiseKeyError(name);
}

static void BindTables(py::module_& module)
{
    py::class_<Table>(module, "Table")
        .def("__getitem__", GetItem)
        .def("__setitem__",
            [](Table& table, const py::str& name, const py::object& value) { table.Set(ToText(name), value); })
        .def("__delitem__", DeleteItem)
        .def("__contains__", [](Table& table, const py::str& name) { return bool(table.Get(ToText(name))); })
        .def("names", [](Table& table) { return ToPython(table.GetNames()); });
    py::class_<VariableTable, Table>(module, "VariableTable").def(py::init<Session&>(), py::keep_alive<1, 2>());
    py::class_<EnvironmentTable, Table>(module, "EnvironmentTable").def(py::init<Session&>(), py::keep_alive<1, 2>());
    py::class_<StatusTableOfBench, Table>(module, "StatusTable").def(py::init<>());
    py::class_<ConfigTable, Table>(module, "ConfigTable").def(py::init<const py::str&>()).def_static("sections", [] {
        return ToPython(ConfigTable::GetSections());
    });
    py::class_<UsageTable, Table>(module, "UsageTable").def(py::init<>());
    py::class_<EventTable, Table>(module, "EventTable").def(py::init<>());
}

static void BindSession(py::module_& module)
{
    py::class_<Session>(module, "Session")
        .def(py::init<unsigned int, bool>())
        .def("evaluate", &Session::Evaluate, py::arg("expression"),
            "The value of the expression: a float, a bool or a str.")
        .def("__call__", &Session::Evaluate, py::arg("expression"))
        .def("_run", &Session::Run)
        .def("_trace", &Session::GetTrace);
    module.attr("NO_CONSTANT_E") = EvaluatorFlags::noConstantE;
    module.attr("TRACE") = EvaluatorFlags::traceVariables;
    module.attr("READ_NOTHING") = EvaluatorFlags::readNothing;
}

static void Bind(py::module_& module)
{
    module.doc() = "What the package labshell is made of.";
    LoadPlugin();
    py::register_exception_translator(Translate);
    BindSession(module);
    BindTables(module);
    module.def("open_bench", [](const std::string& dataFolder, const std::string& profileFolder) {
        return ToPython(Bench::Open(dataFolder, profileFolder));
    });
    module.def("close_bench", Bench::Close);
    module.def("add_function", Functions::Add);
    module.def("abort", LongRun::Abort);
    module.def("end_all", LongRun::EndAll);
}

static PyMethodDef ownFunctions_lc[] = {
    {"require_main_interpreter", RequireMainInterpreter, METH_NOARGS, nullptr},
    {},
};
static py::module_::module_def definition_lc;

/// As PYBIND11_MODULE has it, but for the first question.
extern "C" [[gnu::visibility("default")]] PyObject* PyInit__labshell()
{
    if (!RequireMainInterpreter(nullptr, nullptr))
        return nullptr;
    PYBIND11_ENSURE_INTERNALS_READY
    auto module = py::module_::create_extension_module("_labshell", nullptr, &definition_lc);
    try {
        if (PyModule_AddFunctions(module.ptr(), ownFunctions_lc) != 0)
            throw py::error_already_set();
        Bind(module);
        return module.ptr();
    }
    PYBIND11_CATCH_INIT_EXCEPTIONS
}
