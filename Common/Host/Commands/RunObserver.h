#pragma once

#include "Commands/CommandRunner.h"
#include "HostApi.h"

#include <cstddef>

/// A command line that is being run.
struct CommandRun
{
    const WString& line;
    const Environment& environment;
    unsigned int flags;                    // CommandFlags of the run
    const CommandRunner::Outcome& outcome; // the command's name is known before it runs others, the rest at the end
    const CommandRun* caller;              // the run that this one is nested in, or null
    unsigned int depth;                    // how many runs this one is nested in
};

/// Is told of the command lines that its thread runs as long as it lives; of several the last one made comes first.
/// Must not run commands itself.
class HOST_API RunObserver
{
public:
    RunObserver() noexcept;
    virtual ~RunObserver();
    RunObserver(const RunObserver&) = delete;
    RunObserver& operator=(const RunObserver&) = delete;

    virtual void OnBegin(const CommandRun&) noexcept {}
    /// References of the command line were replaced by their values: `rest` is what follows the name now.
    virtual void OnReplaced(const CommandRun&, const WString& rest) noexcept;
    /// A condition of the command has been evaluated; what it has read, a line each, is known of an Assert alone.
    virtual void OnCondition(
        const CommandRun&, const WString& condition, bool holds, const WString& variableTrace) noexcept;
    /// The command could not evaluate an expression: the error is at `place`, counted from 0.
    virtual void OnBadExpression(const CommandRun&, const WString& expression, std::size_t place) noexcept;
    virtual void OnEnd(const CommandRun&) noexcept {}

    /// The observers of this thread, linked by GetNext; null when there is none.
    static RunObserver* GetFirst() noexcept;
    RunObserver* GetNext() const noexcept { return next; }

    /// No runs of this thread are observed while it lives.
    class HOST_API Pause
    {
    public:
        Pause() noexcept;
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        RunObserver* first;
    };

private:
    RunObserver* next;
};
