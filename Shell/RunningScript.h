#pragma once

#include "Commands/CommandRunner.h"

#include <optional>
#include <utility>

/// A source of commands while it is being run. One may run another: the innermost is the one whose command runs. A
/// thread knows those that it runs itself.
class RunningScript
{
public:
    /// `name` as FormatPlace takes it; outlives this.
    explicit RunningScript(const WString& name) : name(name), caller(std::exchange(innermost, this)) {}
    ~RunningScript() { innermost = caller; }
    RunningScript(const RunningScript&) = delete;
    RunningScript& operator=(const RunningScript&) = delete;

    /// Null when none is being run.
    static RunningScript* GetInnermost() noexcept { return innermost; }

    bool IsOutermost() const noexcept { return !caller; }

    const WString& name;
    unsigned int line = 0; // where the command that is being run begins, from 1
    /// A failure inside that command which is to count as its own.
    std::optional<CommandRunner::Outcome> innerFailure;

private:
    static inline thread_local RunningScript* innermost = nullptr;
    RunningScript* const caller;
};

/// "name:line: ", which names a place; empty without a name.
inline WString FormatPlace(const WString& scriptName, unsigned int line)
{
    return scriptName.IsEmpty() ? WString() : WString::Format(L"%s:%u: ", scriptName, line);
}

/// The place of the command that is being run; empty in a thread that runs no script.
inline WString GetRunningPlace()
{
    const RunningScript* const script = RunningScript::GetInnermost();
    return script ? FormatPlace(script->name, script->line) : WString();
}
