#include "BuiltIns/BuiltIn.h"

BuiltIn::BuiltIn(const BuiltInRecord& record) : record(record)
{
    flags = record.flags;
}

void BuiltIn::ShowUsage()
{
    for (const wchar_t* line : record.usage)
        GetPipe().DoWriteLine(line);
}

void BuiltIn::HandleStandardOptions(Options& options)
{
    WString recordHeader;
    options.TryGetString(L"r", badOptionValue, recordHeader, 1, 32);
}

void BuiltIn::Accept(
    const ArgumentList& arguments, const Options& options, unsigned int minCount, unsigned int maxCount)
{
    if (arguments.Count() < minCount || arguments.Count() > maxCount)
        throw ExitCode(badCount);
    if (options.ContainsUnusedOptions())
        throw ExitCode(badOption);
    SendSignalGoAheadIfRequested();
    WaitForTimeControlPointIfRequested();
}

void BuiltIn::Fail(BuiltInExit number, const WString& message)
{
    SetFailureMessage(message);
    throw ExitCode(number);
}
