#include "Arguments.h"
#include "AssertReport.h"
#include "BuiltIns/Exit.h"
#include "Caret.h"
#include "Colours.h"
#include "Commands/StandardOutput.h"
#include "DelayedStatus.h"
#include "FileLines.h"
#include "Instrument/System.h"
#include "LanguageServer/Run.h"
#include "LastAnswer.h"
#include "PagedOutput.h"
#include "PassedOver.h"
#include "PromptCommands.h"
#include "PromptNotes.h"
#include "Report.h"
#include "ScriptRunner.h"
#include "Services/Clock.h"
#include "SessionLog.h"
#include "Signals.h"
#include "Start.h"
#include "StatusLine.h"
#include "Terminal.h"
#include "Text/Abort.h"
#include "Text/HostError.h"
#include "ThrowAwayFolder.h"
#include "Trace.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <new>
#include <optional>
#include <system_error>
#include <unistd.h>

/// No file that is opened later may be taken for a standard stream that was closed at the start.
static void OccupyStandardStreams()
{
    int file = 0;
    while (file >= 0 && file <= STDERR_FILENO)
        file = open("/dev/null", O_RDONLY); // writing to it fails, as it should
    close(file);
}

/// What a run is watched by, as its options ask for.
struct Watchers
{
    explicit Watchers(const Arguments& arguments) : passedOver(arguments.isStrict)
    {
        if (arguments.sessionLog)
            log.emplace(*arguments.sessionLog);
        if (arguments.assertReport)
            asserts.emplace(WString::FromUtf8(*arguments.assertReport));
        if (arguments.traces)
            trace.emplace();
        if (StatusLine::CanBeShown())
            statusLine.emplace();
    }

    std::optional<SessionLog> log;
    std::optional<AssertReport> asserts;
    std::optional<Trace> trace;
    std::optional<StatusLine> statusLine;
    PassedOver passedOver;
};

struct Ending
{
    bool succeeded = true;
    bool isReadToEnd = false; // neither a failure nor Exit stopped it before
};

static bool HasReaderGone()
{
    return Signals::GetPending() == SIGPIPE;
}

/// Whether an abort is a matter of its own, and not the consequence of output that nobody takes.
static bool IsAbortToBeReported()
{
    return !HasReaderGone() && StandardOutput::Get().GetFault() == 0;
}

/// Whether the command has ended as the people want who have typed it.
static bool IsUsualEnd(const CommandRunner::Outcome& outcome)
{
    const CommandRegistry::Entry* const entry = CommandRegistry::FindOrNull(outcome.command);
    return Signals::GetPending() == SIGINT && entry && entry->record &&
        (entry->record->flags & CommandFlags::endsByInterrupt) != 0;
}

/// The word as a user types it at a shell.
static std::string QuoteForShell(const std::string& word)
{
    constexpr const char* plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-/";
    if (word.find_first_not_of(plain) == std::string::npos)
        return word;
    std::string quoted = "'";
    for (const char ch : word)
        quoted += ch == '\'' ? std::string("'\\''") : std::string(1, ch);
    return quoted + "'";
}

/// The word as a command line takes it, a dash at its start too.
static WString QuoteForCommand(const WString& word)
{
    WString quoted = L"\"";
    for (const wchar_t ch : word) {
        if (ch == L'"' || ch == L'\\')
            quoted += L'\\';
        quoted += ch;
    }
    return quoted + L"\"";
}

/// Says how a script is run, where its file was given for a command.
static void AddHint(const Arguments& arguments, CommandRunner::Outcome& outcome)
{
    std::error_code error;
    if (IsHostError(outcome.code, HostError::UnknownCommand) && outcome.code.GetCommandId() == 0 &&
        std::filesystem::is_regular_file(arguments.firstWord, error))
        outcome.message += WString::FromUtf8("; a script is run by: labsh -f " + QuoteForShell(arguments.firstWord));
}

/// Runs the commands of a source and reports each failure; `goesOn` says whether the source is read on after one.
static Ending RunCommands(const Arguments& arguments, LineSource& lines, const std::string& name, Pipe& shown,
    const Environment& environment, const std::function<bool(const ScriptFailure&)>& goesOn)
{
    RecordedOutput output(shown);
    const WString sourceName = WString::FromUtf8(name);
    Ending ending;
    const auto reportFailure = [&](ScriptFailure& failure) {
        CommandRunner::Outcome& outcome = failure.outcome;
        if (IsHostError(outcome.code, HostError::ExitRequested))
            return false;
        AddHint(arguments, outcome);
        const bool isAborted = IsHostError(outcome.code, HostError::Aborted);
        const bool isTyped = sourceName.IsEmpty();
        if (!isAborted || (IsAbortToBeReported() && !(isTyped && IsUsualEnd(outcome))))
            ReportFailure(sourceName, failure);
        ending.succeeded = false;
        return goesOn(failure);
    };
    ending.isReadToEnd = RunScript(lines, sourceName, output, environment, reportFailure);
    return ending;
}

/// Whatever fails at the terminal is no failure of the shell, and an abort ends the command alone.
static bool RunTerminal(const Arguments& arguments)
{
    LoadAssistant();
    const Environment environment;
    Terminal terminal(System::MayChange() ? System::GetDataFolder() + "/History.txt" : "", environment);
    RecordedLines typed(terminal);
    PromptCommands commands(typed, environment);
    PagedOutput output(StandardOutput::Get());
    const LastAnswer lastAnswer;
    Caret caret(commands);
    const PromptNotes promptNotes;
    RunCommands(arguments, commands, "", output, environment, [&](const ScriptFailure&) {
        caret.Show(caret.TakeOfLine());
        return true;
    });
    return true;
}

static bool RunScriptFile(
    const Arguments& arguments, LineSource& source, const std::string& name, AssertReport* asserts)
{
    RecordedLines lines(source);
    Environment environment;
    for (const Variable& variable : arguments.variables)
        environment.SetString(WString::FromUtf8(variable.name), WString::FromUtf8(variable.value));
    const auto goesOn = [&](const ScriptFailure& failure) {
        if (asserts && !(HasReaderGone() && IsHostError(failure.outcome.code, HostError::Aborted)))
            asserts->AddFailure(WString::FromUtf8(name), failure);
        return arguments.keepsGoing && !IsHostError(failure.outcome.code, HostError::Aborted);
    };
    const Ending ending = RunCommands(arguments, lines, name, StandardOutput::Get(), environment, goesOn);
    if (ending.isReadToEnd)
        DelayedStatus::Finish();
    return ending.succeeded;
}

/// Runs the command Check on the scripts; yields the exit status.
static int CheckScripts(const std::vector<std::string>& words)
{
    constexpr unsigned int onlyWarnings = 10; // what the command fails with
    constexpr unsigned int hasErrors = 11;
    // As variables the words stand for themselves, whatever they hold.
    Environment environment;
    WString line = HasColours(STDOUT_FILENO) ? L"Check -colour" : L"Check";
    for (const std::string& word : words) {
        const WString name = WString::Format(L"word%u", line.Length());
        environment.SetString(name, word == "-json" ? L"-json" : QuoteForCommand(WString::FromUtf8(word)));
        line += L" %E{" + name + L"}";
    }
    const CommandRunner::Outcome outcome = CommandRunner::Run(line, StandardOutput::Get(), environment, 0);
    const unsigned int number = outcome.code.GetModule() == 0 ? outcome.code.GetNumber() : couldNotCheck;
    if (!outcome.code.IsError())
        return 0;
    if (number == onlyWarnings || number == hasErrors)
        return number == onlyWarnings ? 1 : 2;
    WriteReport(L"labsh: ", outcome.code, outcome.message);
    return couldNotCheck;
}

static bool Run(const Arguments& arguments, AssertReport* asserts)
{
    if (arguments.servesEditor) {
        LoadAssistant();
        return RunLanguageServer();
    }
    if (arguments.line) {
        OneLine line(*arguments.line);
        return RunScriptFile(arguments, line, "", asserts);
    }
    if (!arguments.script && isatty(STDIN_FILENO))
        return RunTerminal(arguments);
    FileLines script = arguments.script ? FileLines(*arguments.script) : FileLines(STDIN_FILENO, "stdin");
    return RunScriptFile(arguments, script, arguments.script.value_or("stdin"), asserts);
}

static void CountOnTime(unsigned int start)
try {
    System::usage.Count(L"System.OnTime", (GetTickCount() - start) / 1000);
} catch (const std::bad_alloc&) { // the commands have run all the same
}

static void CheckOutput()
{
    StandardOutput::Get().Flush();
    const int fault = StandardOutput::Get().GetFault();
    if (fault == 0 || HasReaderGone())
        return;
    const std::string reason = fault == ETIMEDOUT ? "its reader takes nothing" : std::generic_category().message(fault);
    throw HostException(HostError::FileError, WString::FromUtf8("standard output cannot be written: " + reason));
}

/// Calls `action`, which yields whether it succeeded, and reports what it throws; among the asserts too, if the
/// watchers watch them.
static bool TryTo(const std::function<bool()>& action, std::optional<Watchers>* watchers = nullptr)
try {
    return action();
} catch (const HostException& failure) {
    if (!IsHostError(failure, HostError::Aborted) || IsAbortToBeReported())
        ReportFailure(failure);
    if (watchers && *watchers && (*watchers)->asserts && !HasReaderGone())
        (*watchers)->asserts->AddBreak(failure);
    return false;
} catch (const std::bad_alloc&) {
    throw;
} catch (const std::exception& exception) {
    ReportFailure(HostException(HostError::UnexpectedException, WString::FromUtf8(exception.what())));
    return false;
}

static bool TryToFinish(const std::function<void()>& action)
{
    return TryTo([&] {
        action();
        return true;
    });
}

/// Writes a file, which no signal interrupts.
static bool TryToWrite(const std::function<void()>& action)
{
    return TryToFinish([&] {
        const Signals::Shelter shelter;
        action();
    });
}

/// What is to be done however the commands have ended, each whatever becomes of the others: files first, then
/// what somebody has to read.
static bool FinishRun(unsigned int start, Watchers& watchers)
{
    bool succeeded = true;
    CountOnTime(start);
    succeeded &=
        TryToWrite([] { System::usage.WriteCounts(); }); // now, since a signal ends the process without destructors
    ReportCounters();
    if (Signals::GetPending() != 0)
        succeeded &= TryToWrite(DelayedStatus::FinishAtOnce);
    if (watchers.asserts) {
        succeeded &= TryToWrite([&] { watchers.asserts->Write(); });
        if (!HasReaderGone())
            succeeded &= TryToFinish([&] { WriteErrorLine(watchers.asserts->FormatSummary()); });
    }
    succeeded &= TryToFinish(CheckOutput);
    if (watchers.log)
        succeeded &= TryToFinish([&] { watchers.log->Check(); });
    return succeeded;
}

/// The shell with its arguments read; yields its exit status.
static int RunShell(Arguments& arguments)
{
    const unsigned int start = GetTickCount();
    const int failed = arguments.checkedScripts ? couldNotCheck : 1;
    std::optional<ThrowAwayFolder> folder;
    std::optional<Watchers> watchers;
    const auto startUp = [&] {
        if (arguments.isFresh)
            arguments.dataFolder = folder.emplace().GetPath();
        watchers.emplace(arguments);
        Start(arguments);
        return true;
    };
    AssertReport* asserts = nullptr;
    const bool hasStarted = TryTo(startUp, &watchers);
    if (watchers && watchers->asserts)
        asserts = &*watchers->asserts;
    if (!hasStarted) {
        if (asserts)
            TryToWrite([&] { asserts->Write(); });
        return failed;
    }
    int checkStatus = 0;
    const bool succeeded = TryTo(
        [&] {
            if (arguments.checkedScripts)
                checkStatus = CheckScripts(*arguments.checkedScripts);
            return arguments.checkedScripts || Run(arguments, asserts);
        },
        &watchers);
    if (!FinishRun(start, *watchers))
        return failed;
    if (arguments.checkedScripts)
        return succeeded ? checkStatus : failed;
    const bool areAssertsGood = !asserts || !asserts->HasFailures();
    return GetExitStatus().value_or(succeeded && areAssertsGood ? 0 : 1);
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
    Signals::Catch();
    const int exitStatus = RunShell(arguments);
    Signals::EndByPending();
    return exitStatus;
} catch (const std::bad_alloc&) {
    ReportShortage();
    return 1;
}
