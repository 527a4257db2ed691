#pragma once

#include "Commands/CommandBase.h"
#include "Commands/CommandRegistry.h"
#include "HostApi.h"

#include <cstddef>
#include <memory>

struct CommandRun;

/// Runs command lines. Threads may do so at once, each with an output of its own; the nesting is counted for each
/// thread, and ends sooner where the thread's stack does.
class HOST_API CommandRunner
{
public:
    static constexpr int maxNesting = 64;
    static constexpr unsigned int maxLineLength = 0x100000;

    struct Outcome
    {
        ExitCode code;
        WString command;         // the command's name as registered, or as typed when there is none of that name
        WString message;         // what is known of a failure, shortened; may be empty
        WString returnString;    // what the command left for its caller
        WStringArray notes = {}; // lines that help a person to see how it came to that; of a success too
    };

    /// Parses the line, makes the command and runs it on `output` in `environment`. Never throws: a thrown ExitCode is
    /// the result, std::bad_alloc becomes HostError::OutOfMemory, any other exception HostError::UnexpectedException. A
    /// failing code gets the command's id when it has none; only what keeps any command from being run (an unknown
    /// name, an abort, the nesting, the line's length, no memory for the command) has no id. A failure for whose
    /// message there is no memory has none. A blank line succeeds and does nothing. The output is flushed at the end.
    static Outcome Run(
        const WString& line, Pipe& output, const Environment& environment, unsigned int runFlags) noexcept;

    /// The innermost command line that this thread is running; null when there is none.
    static const CommandRun* GetRunning() noexcept;

    /// For a command that evaluates conditions: tells the observers of this thread how one came out, and, where
    /// that is known, what it has read, a line each.
    static void NoteCondition(const WString& condition, bool holds, const WString& variableTrace = {}) noexcept;

    /// For a command that could not evaluate an expression: tells them where, counted from 0.
    static void NoteBadExpression(const WString& expression, std::size_t place) noexcept;

    /// True for a failure that ends the commands that ran this one as well: an abort, a request to exit, and too deep a
    /// nesting.
    static bool EndsCallers(const ExitCode& code) noexcept;

    /// Writes the usage text of a command.
    static void ShowUsage(const CommandRegistry::Entry& entry, Pipe& output);

private:
    static std::unique_ptr<CommandBase> Create(const CommandRegistry::Entry& entry, Pipe& output);
    static void RunLine(
        const WString& line, Pipe& output, const Environment& environment, unsigned int runFlags, Outcome& outcome);
    static WString ReplaceReferences(const CommandBase& command, const WString& rest);
    static void RunCommand(CommandBase& command, const WString& rest, Outcome& outcome);
};
