#pragma once

#include "Commands/CommandRunner.h"
#include "Commands/LineSource.h"

#include <functional>

/// A command of a script and how it failed.
struct ScriptFailure
{
    CommandRunner::Outcome outcome;
    unsigned int line; // where the command begins, from 1
};

/// Runs the commands of a script in one environment: one a line, a final backslash continuing it; a line that begins
/// with "#" is a comment. A failure is handed to `goesOn`, which says whether the script goes on. Counts each command
/// in the usage counter "Command.<name>". Yields whether the source was read to its end. Throws what the source throws.
/// `name` names the source in reports; it is empty for what is typed.
bool RunScript(LineSource& source, const WString& name, Pipe& output, const Environment& environment,
    const std::function<bool(ScriptFailure&)>& goesOn);

/// "name:line: command: ", which names the place of a failure; without a name "command: ".
WString FormatFailurePlace(const WString& scriptName, const ScriptFailure& failure);
