#include "PassedOver.h"

#include "Commands/StandardOutput.h"
#include "LineNotes.h"
#include "Report.h"
#include "RunningScript.h"

#include <new>
#include <utility>

void PassedOver::OnBegin(const CommandRun& run) noexcept
try {
    if (!run.caller)
        warnings.clear();
    else if (IsPendingIn(run.caller))
        Report(*run.caller);
} catch (const std::bad_alloc&) { // the commands run all the same
}

static std::optional<Caret::Place> GetPlace()
{
    const Caret* const caret = Caret::GetOrNull();
    return caret ? caret->GetLast() : std::nullopt;
}

void PassedOver::OnEnd(const CommandRun& run) noexcept
try {
    if (IsPendingIn(&run)) {
        if (run.outcome.code.IsError())
            pending.pop_back();
        else
            Report(run);
    }
    if (run.caller && run.outcome.code.IsError() && (run.flags & CommandFlags::toleratesFailure) == 0)
        pending.push_back({run.caller, run.line.Trim(), run.outcome, GetPlace()});
} catch (const std::bad_alloc&) { // the commands run all the same
}

bool PassedOver::IsPendingIn(const CommandRun* caller) const noexcept
{
    return !pending.empty() && pending.back().caller == caller;
}

void PassedOver::Report(const CommandRun& caller)
{
    const WString& callerName = caller.outcome.command;
    Pending failure = std::move(pending.back());
    pending.pop_back();
    auto& [code, name, message, returnString, notes] = failure.outcome;
    const WString what = L"went on after \"" + failure.line + L"\"";
    const WString warning = GetRunningPlace() + L"warning: " + callerName + L" " + what + L": ";
    if (!warnings.insert(warning).second)
        return;
    AddLineNotes(failure.line, true, notes);
    AddLineNotes(caller.line, true, notes);
    RunningScript* const script = RunningScript::GetInnermost();
    Caret* const caret = Caret::GetOrNull();
    if (isFailure && script && !script->innerFailure) {
        if (caret)
            caret->Keep(failure.place);
        script->innerFailure = {code, callerName, what + (message.IsEmpty() ? L"" : L": ") + message, {}, notes};
    } else {
        WriteReport(warning, code, message, Colour::Warning);
        WriteNotes(GetRunningPlace(), notes);
        if (caret)
            caret->Show(failure.place);
        StandardOutput::Get().ForgetShown(); // it belongs to a failure that has been told
    }
}
