#include "PromptNotes.h"

#include "LineNotes.h"
#include "Report.h"

#include <new>

void PromptNotes::OnEnd(const CommandRun& run) noexcept
try {
    if (run.caller || run.outcome.code.IsError())
        return;
    WStringArray notes = run.outcome.notes;
    AddLineNotes(run.line, false, notes);
    WriteNotes(L"", notes);
} catch (const std::bad_alloc&) { // the command has run all the same
}
