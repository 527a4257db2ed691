#include "Arguments.h"
#include "BuiltIns/BuiltIns.h"
#include "Commands/PluginLoader.h"
#include "DelayedStatus.h"
#include "FileLines.h"
#include "Instrument/System.h"
#include "Report.h"
#include "ScriptRunner.h"
#include "Services/Clock.h"
#include "Terminal.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <new>
#include <unistd.h>

/// No file that is opened later may be taken for a standard stream that was closed at the start.
static void OccupyStandardStreams()
{
    int file = 0;
    while (file >= 0 && file <= STDERR_FILENO)
        file = open("/dev/null", O_RDONLY); // writing to it fails, as it should
    close(file);
}

/// Makes Ctrl-C an abort request. Without SA_RESTART it also ends the wait for input.
static void CatchInterrupt()
{
    struct sigaction action = {};
    action.sa_handler = [](int) { Abort::Request(); };
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
}

static void Start(const Arguments& arguments)
{
    const std::string shellFolder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
    if (arguments.dataFolder.empty())
        throw HostException(HostError::FileError, L"no data folder: give --data, or set LABSH_HOME or HOME");
    System::Start(arguments.dataFolder, shellFolder + "/Profile");
    AddBuiltIns();
    PluginLoader::Load(shellFolder + "/ExpressionEvaluator.dll");
    for (const std::string& plugin : arguments.plugins)
        PluginLoader::Load(plugin);
}

struct Ending
{
    bool succeeded = true;
    bool isReadToEnd = false; // neither a failure nor Exit stopped it before
};

/// Runs the commands of a source and reports each failure; `goesOn` says whether the source is read on after one.
static Ending RunCommands(LineSource& source, const WString& name, const std::function<bool(const ExitCode&)>& goesOn)
{
    StreamPipe output(stdout);
    Ending ending;
    ending.isReadToEnd = RunScript(source, output, Environment(), [&](const ScriptFailure& failure) {
        const CommandRunner::Outcome& outcome = failure.outcome;
        if (IsHostError(outcome.code, HostError::ExitRequested))
            return false;
        ReportFailure(name, failure);
        ending.succeeded = false;
        return goesOn(outcome.code);
    });
    return ending;
}

/// Whatever fails at the terminal is no failure of the shell, and an abort ends the command alone.
static void RunTerminal()
{
    Terminal terminal(System::GetDataFolder() + "/history");
    RunCommands(terminal, WString(), [](const ExitCode&) { return true; });
}

static bool RunScriptFile(LineSource& source, const std::string& name, bool keepsGoing)
{
    const Ending ending = RunCommands(source, WString::FromUtf8(name),
        [&](const ExitCode& code) { return keepsGoing && !IsHostError(code, HostError::Aborted); });
    if (ending.isReadToEnd)
        DelayedStatus::Finish();
    return ending.succeeded;
}

static bool Run(const Arguments& arguments)
{
    if (arguments.line) {
        OneLine line(*arguments.line);
        return RunScriptFile(line, "", false);
    }
    if (!arguments.script && isatty(STDIN_FILENO)) {
        RunTerminal();
        return true;
    }
    FileLines script = arguments.script ? FileLines(*arguments.script) : FileLines(STDIN_FILENO, "stdin");
    return RunScriptFile(script, arguments.script.value_or("stdin"), arguments.keepsGoing);
}

static void CheckOutput()
{
    if (std::fflush(stdout) != 0 || std::ferror(stdout))
        throw HostException(HostError::FileError, L"standard output cannot be written");
}

static void CountOnTime(unsigned int start)
try {
    System::usage.Count(L"System.OnTime", (GetTickCount() - start) / 1000);
} catch (const std::bad_alloc&) { // the commands have run all the same
}

/// The shell with its arguments read; yields its exit status.
static int RunShell(const Arguments& arguments)
try {
    const unsigned int start = GetTickCount();
    Start(arguments);
    const bool succeeded = Run(arguments);
    CountOnTime(start);
    CheckOutput();
    return succeeded ? 0 : 1;
} catch (const HostException& failure) {
    ReportFailure(failure);
    return 1;
} catch (const std::bad_alloc&) {
    throw;
} catch (const std::exception& exception) {
    ReportFailure(HostException(HostError::UnexpectedException, WString::FromUtf8(exception.what())));
    return 1;
}

static std::terminate_handler otherEnd_lc; // for faults of the program

/// Where an exception finds no handler, which is also where memory runs out while a library is being loaded.
[[noreturn]] static void Terminate()
{
    try {
        if (std::current_exception())
            throw;
    } catch (const std::bad_alloc&) {
        ReportShortage();
        _exit(1);
    } catch (...) {
        otherEnd_lc(); // which names it
    }
    otherEnd_lc();
    std::abort();
}

/// Called before the libraries make their static objects, for which they take memory.
[[gnu::section(".preinit_array"), gnu::used]] static void (
    *beforeLibraries_lc)() = [] { otherEnd_lc = std::set_terminate(Terminate); };

int main(int count, char** texts)
try {
    OccupyStandardStreams();
    Arguments arguments;
    if (const auto exitStatus = ReadArguments(count, texts, arguments))
        return *exitStatus;
    CatchInterrupt();
    return RunShell(arguments);
} catch (const std::bad_alloc&) {
    ReportShortage();
    return 1;
}
