#include "Commands/CommandBase.h"

#include "Commands/CommandRunner.h"
#include "Services/Abort.h"
#include "Services/Clock.h"
#include "Services/System.h"
#include "Text/HostError.h"

#include <algorithm>

namespace {
Pipe& GetStandardOutput()
{
    static StreamPipe pipe(stdout);
    return pipe;
}

void Sleep(int milliseconds)
{
    Clock::Get().Sleep(static_cast<unsigned int>(std::max(milliseconds, 0)));
    Abort::ThrowIfRequested();
}
} // namespace

CommandBase::CommandBase() : pipe(&GetStandardOutput()) {}

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
    const ExitCode code = CommandRunner::Run(line, output, environment, runFlags).code;
    if (CommandRunner::EndsCallers(code))
        throw code;
    return code;
}

void CommandBase::SendSignalGoAheadIfRequested() {}

void CommandBase::WaitForTimeControlPointIfRequested()
{
    Abort::ThrowIfRequested();
}

void CommandBase::SleepAbortable(int milliseconds)
{
    const HostException failure(HostError::WrongArguments);
    const double scale = System::config.GetDoubleOrUseDefault(L"Debug", L"SleepScale", 1.0, failure, 0.0, 1.0);
    Sleep(static_cast<int>(milliseconds * scale));
}

void CommandBase::SleepWithoutSimulationMode(int milliseconds)
{
    Sleep(milliseconds);
}
