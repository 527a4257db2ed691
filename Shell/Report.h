#pragma once

#include "Colours.h"
#include "ScriptRunner.h"
#include "Text/HostError.h"

/// Writes a line on standard error, without control characters and behind what was written on standard output.
void WriteErrorLine(const WString& text, Colour colour = Colour::None);
/// The place, the code's text and, where known, the message, as such a line. At a terminal the message leaves out what
/// has just been shown there.
void WriteReport(const WString& place, const ExitCode& code, const WString& message, Colour colour = Colour::Failure);
/// What the terminal has shown up to now is left out of no report from now on.
void ForgetShown();
/// A line for each note of a command, which `place` names the line of as FormatPlace does.
void WriteNotes(const WString& place, const WStringArray& notes);

/// Writes the command's place, the code's text and, where known, the message on standard error as one line, and behind
/// it the notes. Without the memory for that it writes the line of ReportShortage.
void ReportFailure(const WString& scriptName, const ScriptFailure& failure);
/// The same for a failure of the shell itself.
void ReportFailure(const HostException& failure);

/// Writes what was found wrong with the counters' file while it was in use, as a line on standard error.
void ReportCounters() noexcept;

/// Writes the one line on standard error that needs no memory.
void ReportShortage() noexcept;
