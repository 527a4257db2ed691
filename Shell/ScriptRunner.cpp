#include "ScriptRunner.h"

#include "Commands/ScriptReader.h"
#include "Instrument/System.h"
#include "LineNotes.h"
#include "Report.h"
#include "RunningScript.h"
#include "Text/HostError.h"

#include <algorithm>
#include <new>
#include <utility>

namespace {
CommandRunner::Outcome RunCommand(std::string& command, Pipe& output, const Environment& environment)
try {
    if (command.size() > CommandRunner::maxLineLength)
        throw HostException(HostError::CommandTooLong);
    // A NUL must not cut the line off: as a byte that is not UTF-8 it becomes U+FFFD.
    std::ranges::replace(command, '\0', '\xFF');
    return CommandRunner::Run(WString::FromUtf8(command), output, environment, 0);
} catch (const HostException& failure) {
    return {failure, L"labsh", failure.GetMessage(), {}};
} catch (const std::bad_alloc&) {
    const HostException failure(HostError::OutOfMemory);
    return {failure, L"labsh", failure.GetMessage(), {}};
}

/// Adds to a failure what may be its cause.
void AddHint(CommandRunner::Outcome& outcome, const WString& name, const ScriptReader& reader)
{
    const unsigned int line = reader.GetSpoiltLine();
    if (line != 0 && !CommandRunner::EndsCallers(outcome.code))
        outcome.message += L"; " + FormatPlace(name, line) +
            L"a blank stands behind the final backslash, so the line is not continued";
}

void AddNotes(const std::string& command, WStringArray& notes)
try {
    AddLineNotes(WString::FromUtf8(command), true, notes);
} catch (const std::bad_alloc&) { // the failure is told without
}

void CountCommand(const WString& name)
try {
    if (CommandRegistry::FindOrNull(name))
        System::usage.Count(L"Command." + name);
} catch (const std::bad_alloc&) { // the command has run all the same
}
} // namespace

bool RunScript(LineSource& source, const WString& name, Pipe& output, const Environment& environment,
    const std::function<bool(ScriptFailure&)>& goesOn)
{
    ScriptReader reader(source);
    RunningScript script(name);
    std::string command;
    while (reader.TryRead(command)) {
        script.line = reader.GetLine();
        script.innerFailure.reset();
        ForgetShown();
        ScriptFailure run = {RunCommand(command, output, environment), script.line};
        CountCommand(run.outcome.command);
        ReportCounters();
        if (script.innerFailure) {
            ScriptFailure inner = {*std::move(script.innerFailure), script.line};
            if (!run.outcome.code.IsError())
                run = std::move(inner);
            else
                goesOn(inner); // which says no more: the line has failed by itself too
        }
        if (!run.outcome.code.IsError())
            continue;
        AddHint(run.outcome, name, reader);
        AddNotes(command, run.outcome.notes);
        if (!goesOn(run))
            return false;
    }
    return true;
}

WString FormatFailurePlace(const WString& scriptName, const ScriptFailure& failure)
{
    return FormatPlace(scriptName, failure.line) + failure.outcome.command + L": ";
}
