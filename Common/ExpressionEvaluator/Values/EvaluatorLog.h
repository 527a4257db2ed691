#pragma once

#include "ExpressionEvaluatorApi.h"
#include "Services/LogFile.h"
#include "Text/HostError.h"

/// The evaluator's log, shared by all evaluators. Ask IsEnabled() before building a text for it.
extern EE_API LogFile eeLog_gb;

/// Writes the line that `makeLine` returns while the log is on. A line that gets longer than a text can be is left out:
/// a log fails no evaluation.
template <typename MakeLine>
void WriteEvaluatorLog(const MakeLine& makeLine)
{
    if (!eeLog_gb.IsEnabled())
        return;
    try {
        eeLog_gb.DoWriteLine(makeLine());
    } catch (const HostException& exception) {
        if (!IsHostError(exception, HostError::TextTooLong))
            throw;
    }
}
