#pragma once

#include "Commands/ArgumentList.h"
#include "Commands/CommandFlags.h"
#include "Commands/Options.h"
#include "Commands/Pipe.h"
#include "Containers/Object.h"
#include "HostApi.h"
#include "Instrument/Environment.h"
#include "Text/ExitCode.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

enum class CommandType
{
    Normal
};

struct CommandRecord;

/// What a paused command is told.
struct PauseArgument
{
    WString reason;
};

/// Names a command run, for signals between commands.
struct CommandReference
{
    unsigned int commandId = 0;
};

/// Base of all commands. A command object serves one run, on one thread: the runner gives it output, environment and
/// flags, then calls OnStart, HandleStandardOptions, Main and OnExit.
class HOST_API CommandBase
{
public:
    virtual WString GetName() = 0;
    virtual unsigned int GetCommandId() = 0;
    /// When the source was made, as text for people; may be empty. Lives as long as the command's library.
    virtual const char* GetSourceCodeTimestamp() = 0;
    virtual CommandType GetCommandType();
    /// Does the command's work; an ExitCode thrown out of it is its result as well.
    virtual ExitCode Main(ArgumentList& arguments, Options& options) = 0;
    virtual void ShowUsage() = 0;
    /// With the parsed line, which lives to the end of the run, before the other operations of it. An ExitCode thrown
    /// out of it is the command's result, and Main is not called.
    virtual void OnStart(ArgumentList& arguments, Options& options);
    /// At the end of each run, failed or not; may change its exit code.
    virtual void OnExit(ExitCode& exitCode);
    /// Takes the options that several commands share, before Main looks at the rest.
    virtual void HandleStandardOptions(Options& options);
    // Called by hosts that abort, hold or signal single commands; never by this one.
    virtual void OnAbort(bool& handled);
    virtual void OnPause(bool pause, PauseArgument& argument);
    virtual void SignalHandler(const CommandReference& sender, unsigned int signal, Object* argument);
    virtual ~CommandBase();

    /// Runs a command line in this command's environment. The failure of that command is an exit code; what ends this
    /// command as well (see CommandRunner::EndsCallers) is thrown as one, so that no loop or list of commands can pass
    /// over it.
    ExitCode Run(const WString& line, Pipe& output, unsigned int runFlags);

    /// What describes the command; null when nothing but the operations above does.
    const CommandRecord* GetRecord() const noexcept { return record; }

    Pipe& GetPipe() noexcept { return *pipe; }
    Environment& GetEnvironment() noexcept { return environment; }
    unsigned int GetFlags() const noexcept { return flags; }
    WString& GetReturnString() noexcept { return returnString; }
    /// What a failing command knows of its failure, for the report of whoever ran it.
    const WString& GetFailureMessage() const noexcept { return failureMessage; }

protected:
    CommandBase();
    CommandBase(const CommandBase&) = delete;
    CommandBase& operator=(const CommandBase&) = delete;

    /// The record outlives the command.
    void SetRecord(const CommandRecord& commandRecord) noexcept { record = &commandRecord; }
    void SetFailureMessage(const WString& message) { failureMessage = message; }
    /// Adds a line that helps a person to see how the run came to end as it did, once: for a report, or the prompt.
    void AddNote(const WString& note);
    /// What is known of the failure of the command that Run ran last; empty when it succeeded.
    const WString& GetRunMessage() const noexcept { return runMessage; }
    /// The notes on that failure, which are this command's when it fails for it. Those on a success become this
    /// command's as it is.
    const WStringArray& GetRunNotes() const noexcept { return runNotes; }
    /// Where a caller would be told that this command's arguments are accepted; in the bench shell nobody waits for
    /// that.
    void SendSignalGoAheadIfRequested();
    /// A point where the command may be held or ended: throws HostException(HostError::Aborted) when an abort is
    /// requested.
    void WaitForTimeControlPointIfRequested();
    /// Both wait for the given time and throw HostException(HostError::Aborted) within 50 ms of an abort request. At
    /// the bench they do not differ: nothing there simulates time.
    void SleepAbortable(int milliseconds);
    void SleepWithoutSimulationMode(int milliseconds);

    unsigned int flags = 0;

private:
    friend class CommandRunner;
    const CommandRecord* record = nullptr;
    Pipe* pipe;
    Environment environment;
    WString returnString;
    WString failureMessage;
    WStringArray notes;
    WString runMessage;
    WStringArray runNotes;
};
