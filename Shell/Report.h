#pragma once

#include "ScriptRunner.h"
#include "Text/HostError.h"

/// Writes one line on standard error: the command's place, the code's text and, where known, the message. Without the
/// memory for that it writes the line of ReportShortage.
void ReportFailure(const WString& scriptName, const ScriptFailure& failure);
/// The same for a failure of the shell itself.
void ReportFailure(const HostException& failure);

/// Writes the one line on standard error that needs no memory.
void ReportShortage() noexcept;
