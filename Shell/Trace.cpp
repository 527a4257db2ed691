#include "Trace.h"

#include "LocalTime.h"
#include "Report.h"
#include "RunningScript.h"

#include <new>
#include <string>

namespace {
/// Writes a line of the trace: `mark` once for each level of the run, then the text.
void Write(const CommandRun& run, wchar_t mark, const WString& text)
{
    const WString marks(std::wstring(run.depth + 1, mark));
    WriteErrorLine(FormatTime() + L" " + GetRunningPlace() + marks + L" " + text);
}
} // namespace

void Trace::OnBegin(const CommandRun& run) noexcept
try {
    ShowChanges(run.caller ? *run.caller : run);
    Write(run, L'+', run.line.Trim());
} catch (const std::bad_alloc&) { // the command runs all the same
}

void Trace::OnReplaced(const CommandRun& run, const WString& rest) noexcept
try {
    Write(run, L' ', L"-> " + run.outcome.command + L" " + rest);
} catch (const std::bad_alloc&) {
}

void Trace::OnCondition(const CommandRun& run, const WString& condition, bool holds, const WString&) noexcept
try {
    ShowChanges(run); // those of a loop
    Write(run, L' ', condition + (holds ? L" -> TRUE" : L" -> FALSE"));
} catch (const std::bad_alloc&) {
}

void Trace::OnEnd(const CommandRun& run) noexcept
try {
    ShowChanges(run);
    const CommandRunner::Outcome& outcome = run.outcome;
    if (run.caller && outcome.code.IsError())
        Write(run, L' ', L"-> " + outcome.code.ToString() + L" " + outcome.message);
} catch (const std::bad_alloc&) {
}

void Trace::ShowChanges(const CommandRun& run)
{
    for (const WString& name : run.environment.TakeChanges()) {
        WString value;
        if (!run.environment.TryGetString(name, value)) {
            if (shown.erase(name) != 0)
                Write(run, L' ', name + L" deleted");
        } else if (const auto former = shown.find(name); former == shown.end() || former->second != value) {
            Write(run, L' ', name + L"=" + value);
            shown.insert_or_assign(name, value);
        }
    }
}
