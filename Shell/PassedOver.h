#pragma once

#include "Caret.h"
#include "Commands/RunObserver.h"

#include <set>
#include <vector>

/// Watches for failures that a command passed over, as If does: a command that it ran failed, nobody has said that the
/// failure is to be tolerated, and it went on all the same. Such a failure is reported as a warning, once for a line of
/// a script; or it counts as one of that line.
class PassedOver : public RunObserver
{
public:
    explicit PassedOver(bool isFailure) : isFailure(isFailure) {}

    void OnBegin(const CommandRun& run) noexcept override;
    void OnEnd(const CommandRun& run) noexcept override;

private:
    /// A failure of which it is not known yet whether the caller goes on.
    struct Pending
    {
        const CommandRun* caller;
        WString line;
        CommandRunner::Outcome outcome;
        std::optional<Caret::Place> place; // of what was typed
    };

    const bool isFailure;
    std::vector<Pending> pending; // at most one for each run that is under way
    std::set<WString> warnings;   // of the line that is being run

    bool IsPendingIn(const CommandRun* caller) const noexcept;
    void Report(const CommandRun& caller);
};
