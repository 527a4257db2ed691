#include "Bench.h"
#include "Commands/PluginLoader.h"
#include "Failure.h"
#include "Functions.h"
#include "Runs.h"
#include "SessionType.h"
#include "TableType.h"
#include "Text/HostError.h"

#include <string>

/// All at once: later other threads may run commands.
static void LoadPlugins()
try {
    for (const char* plugin : {"/ExpressionEvaluator.dll", "/BenchCommands.dll", "/ScriptTools.dll"})
        PluginLoader::Load(PluginLoader::GetFolder() + plugin);
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

static void TranslateToPython(std::exception_ptr thrown) // NOLINT(performance-unnecessary-value-param)
try {
    if (thrown)
        Failure::Translate(thrown);
} catch (py::error_already_set& raised) {
    raised.restore();
}

/// The number of the bench, and what was found wrong with its files.
static py::tuple OpenBench(const std::string& dataFolder, const std::string& profileFolder)
{
    if ((dataFolder + profileFolder).find('\0') != std::string::npos)
        throw py::value_error("embedded null character");
    const WStringArray reports = Bench::Open(dataFolder, profileFolder);
    return py::make_tuple(Bench::GetOpen(), ToPython(reports));
}

static void LeaveParent()
{
    LongRun::LeaveOtherThreads();
    Bench::Leave();
}

static void Bind(py::module_& module)
{
    module.doc() = "What the package labshell is made of.";
    LoadPlugins();
    module.attr("__version__") = LABSHELL_VERSION;
    module.attr("PROFILE") = py::bytes(PluginLoader::GetFolder() + "/Profile");
    py::register_exception_translator(TranslateToPython);
    module.attr("NO_CONSTANT_E") = EvaluatorFlags::noConstantE;
    module.attr("TRACE") = EvaluatorFlags::traceVariables;
    module.attr("READ_NOTHING") = EvaluatorFlags::readNothing;
    SessionType::AddTo(module);
    TableType::AddTo(module);
    module.def("open_bench", OpenBench);
    module.def("require_bench", Bench::Require);
    module.def("close_bench", Bench::Close);
    module.def("get_sections", [](unsigned int bench) { return ToPython(Bench::GetSections(bench)); });
    module.def("add_function", Functions::Add);
    module.def("abort", LongRun::Abort);
    module.def("end_all", LongRun::EndAll);
    module.def("leave_parent", LeaveParent);
}

static PyMethodDef ownFunctions_lc[] = {
    {"require_main_interpreter", RequireMainInterpreter, METH_NOARGS, nullptr},
    {},
};
static py::module_::module_def definition_lc;

/// As PYBIND11_MODULE has it, but for the first question.
// The name is Python's: NOLINTNEXTLINE(bugprone-reserved-identifier)
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
