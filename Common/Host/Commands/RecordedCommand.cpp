#include "Commands/RecordedCommand.h"

RecordedCommand::RecordedCommand(const CommandRecord& record)
{
    SetRecord(record);
    flags |= record.flags;
}

WString RecordedCommand::GetName()
{
    return GetRecord()->name;
}

unsigned int RecordedCommand::GetCommandId()
{
    return GetRecord()->id;
}

const char* RecordedCommand::GetSourceCodeTimestamp()
{
    return "";
}

void RecordedCommand::ShowUsage()
{
    for (const UsageLine& line : GetRecord()->usage)
        GetPipe().WriteLine(line.format, line.argument);
}

ExitCode RecordedCommand::Start(const Options& options)
{
    if (options.ContainsUnusedOptions())
        return ExitCode(CommonExit::badOption);
    SendSignalGoAheadIfRequested();
    WaitForTimeControlPointIfRequested();
    return ExitCode(0);
}

void RecordedCommand::Accept(
    const ArgumentList& arguments, const Options& options, unsigned int minCount, unsigned int maxCount)
{
    if (arguments.Count() < minCount || arguments.Count() > maxCount)
        throw ExitCode(CommonExit::wrongCount);
    if (const ExitCode refusal = Start(options); refusal.IsError())
        throw refusal;
}

void RecordedCommand::Accept(const ArgumentList& arguments, const Options& options)
{
    const ArgumentCount& count = GetRecord()->argumentCount;
    Accept(arguments, options, count.least, count.most);
}

ExitCode RecordedCommand::Refuse(unsigned int exitNumber, const WString& message)
{
    SetFailureMessage(message);
    return ExitCode(exitNumber);
}

void RecordedCommand::Fail(unsigned int exitNumber, const WString& message)
{
    throw Refuse(exitNumber, message);
}
