#include "Commands/CommandBase.h"

#include "Commands/CommandRunner.h"
#include "Commands/StandardOutput.h"
#include "Instrument/System.h"
#include "Services/Clock.h"
#include "Text/Abort.h"

#include <algorithm>
#include <utility>

namespace {
void Sleep(Pipe& output, int milliseconds)
{
    output.Flush();
    System::usage.WriteCounts();
    Clock::Get().Sleep(static_cast<unsigned int>(std::max(milliseconds, 0)));
    Abort::ThrowIfRequested();
}
} // namespace

CommandBase::CommandBase() : pipe(&StandardOutput::Get()) {}

CommandBase::~CommandBase() = default;

CommandType CommandBase::GetCommandType()
{
    return CommandType::Normal;
}

void CommandBase::OnStart(ArgumentList&, Options&) {}

void CommandBase::OnExit(ExitCode&) {}

void CommandBase::HandleStandardOptions(Options&) {}

void CommandBase::OnAbort(bool&) {}

void CommandBase::OnPause(bool, PauseArgument&) {}

void CommandBase::SignalHandler(const CommandReference&, unsigned int, Object*) {}

ExitCode CommandBase::Run(const WString& line, Pipe& output, unsigned int runFlags)
{
    CommandRunner::Outcome outcome = CommandRunner::Run(line, output, environment, runFlags);
    if (CommandRunner::EndsCallers(outcome.code))
        throw outcome.code;
    runMessage = std::move(outcome.message);
    runNotes = std::move(outcome.notes);
    if (!outcome.code.IsError()) {
        for (const WString& note : runNotes)
            AddNote(note);
        runNotes.Clear();
    }
    return outcome.code;
}

void CommandBase::AddNote(const WString& note)
{
    if (std::ranges::find(notes, note) == notes.end())
        notes.Add(note);
}

void CommandBase::SendSignalGoAheadIfRequested() {}

void CommandBase::WaitForTimeControlPointIfRequested()
{
    Abort::ThrowIfRequested();
}

void CommandBase::SleepAbortable(int milliseconds)
{
    Sleep(GetPipe(), milliseconds);
}

void CommandBase::SleepWithoutSimulationMode(int milliseconds)
{
    Sleep(GetPipe(), milliseconds);
}
