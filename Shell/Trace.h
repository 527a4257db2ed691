#pragma once

#include "Commands/RunObserver.h"
#include "Instrument/NameOrder.h"

#include <map>

/// Shows on standard error what runs: each command with the time and its place before it begins, then what its
/// references stand for, how its conditions come out, the variables that have changed, and the failure of one that
/// another command ran. A "+" stands before a command, one more for each that it is nested in.
class Trace : public RunObserver
{
public:
    void OnBegin(const CommandRun& run) noexcept override;
    void OnReplaced(const CommandRun& run, const WString& rest) noexcept override;
    void OnCondition(
        const CommandRun& run, const WString& condition, bool holds, const WString& variableTrace) noexcept override;
    void OnEnd(const CommandRun& run) noexcept override;

private:
    std::map<WString, WString, NameOrder> shown; // the variables as they were shown last

    void ShowChanges(const CommandRun& run);
};
