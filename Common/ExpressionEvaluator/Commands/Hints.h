#pragma once

#include "Command.h"

#include "Instrument/Environment.h"
#include "Text/WStringArray.h"

/// What helps a person to see why an expression failed, found out only then: what the message says is not changed by
/// it, and nothing is evaluated.
namespace Hints {
struct Explanation
{
    WString question; // to be put behind the message: " (did you mean Round?)", or nothing
    WStringArray notes;
};
Explanation Explain(const EvaluationError& error, const Environment& environment);

/// " (did you mean <name>?)" for a bare name or a reference that nothing stands for; empty when no name is near.
WString AskForName(const WString& name, const Environment& environment);
/// " (did you mean <keyword> for "<word>"?)" for the first word outside double quotes that is nearly one of the
/// keywords, and that nothing stands for; else empty.
WString AskForKeyword(const WString& text, const WStringArray& keywords, const Environment& environment);

/// True for an option that looks like the calculation of something.
bool IsCalculated(const WString& option);
/// True for what may follow an operand in an expression, and for nothing.
bool IsContinuation(const WString& rest);
} // namespace Hints
