#pragma once

#include "Commands/CommandBase.h"
#include "Commands/CommandRegistry.h"
#include "HostApi.h"

#include <memory>

/// Runs command lines.
class HOST_API CommandRunner
{
public:
    static constexpr int maxNesting = 64;
    static constexpr unsigned int maxLineLength = 0x100000;

    struct Outcome
    {
        ExitCode code;
        WString command;      // the command's name as registered, or as typed when there is none of that name
        WString message;      // what is known of a failure; may be empty
        WString returnString; // what the command left for its caller
    };

    /// Parses the line, makes the command and runs it on `output` in `environment`. Never throws: a thrown ExitCode is
    /// the result, any other exception becomes HostError::UnexpectedException. A failing code that the command returned
    /// or threw gets the command's id when it has none; what keeps the command from being run (its name, its line, an
    /// abort, the nesting) has no id. A blank line succeeds and does nothing.
    static Outcome Run(const WString& line, Pipe& output, const Environment& environment, unsigned int runFlags);

    /// True for a failure that ends the commands that ran this one as well: an abort, a request to exit, and too deep a
    /// nesting.
    static bool EndsCallers(const ExitCode& code) noexcept;

    /// Writes the usage text of a command.
    static void ShowUsage(const CommandRegistry::Entry& entry, Pipe& output);

private:
    static std::unique_ptr<CommandBase> Create(const CommandRegistry::Entry& entry, Pipe& output);
    static void RunLine(
        const WString& line, Pipe& output, const Environment& environment, unsigned int runFlags, Outcome& outcome);
    static void RunCommand(CommandBase& command, ArgumentList& arguments, Options& options, Outcome& outcome);
};
