#include "Commands/CommandRunner.h"

#include "Commands/CommandLine.h"
#include "Commands/Reference.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <exception>

namespace {
thread_local int nesting_lc = 0;

class NestingLevel
{
public:
    NestingLevel()
    {
        if (nesting_lc == CommandRunner::maxNesting)
            throw HostException(HostError::NestedTooDeeply);
        ++nesting_lc;
    }
    ~NestingLevel() { --nesting_lc; }
    NestingLevel(const NestingLevel&) = delete;
    NestingLevel& operator=(const NestingLevel&) = delete;
};

constexpr unsigned int nameLimit_lc = 60;
constexpr unsigned int messageLimit_lc = 500;

WString Shorten(const WString& text, unsigned int limit)
{
    return text.Length() <= limit ? text : text.Left(limit) + WString(L"...");
}

/// Makes the exception that is being handled the outcome.
void TakeThrown(CommandRunner::Outcome& outcome)
{
    const auto take = [&](const HostException& exception) {
        outcome.code = exception;
        outcome.message = exception.GetMessage();
    };
    try {
        throw;
    } catch (const HostException& exception) {
        take(exception);
    } catch (const ExitCode& code) {
        outcome.code = code;
        outcome.message.Clear();
    } catch (const std::exception& exception) {
        take(HostException(HostError::UnexpectedException, WString::FromUtf8(exception.what())));
    } catch (...) {
        take(HostException(HostError::UnexpectedException));
    }
}

/// The messages of codes whose meaning is the same in all commands.
WString Describe(const ExitCode& code, const Options& options)
{
    if (!options.GetRefusedOption().IsEmpty())
        return L"Bad value of option " + options.GetRefusedOption();
    if (code.GetModule() == 0 && code.GetNumber() == CommonExit::wrongCount)
        return L"Wrong number of arguments";
    if (code.GetModule() == 0 && code.GetNumber() == CommonExit::badOption)
        return HostException(HostError::UnknownOption, options.GetUnusedOption()).GetMessage();
    return GetHostMessage(code);
}
} // namespace

CommandRunner::Outcome CommandRunner::Run(
    const WString& line, Pipe& output, const Environment& environment, unsigned int runFlags)
{
    Outcome outcome;
    try {
        RunLine(line, output, environment, runFlags, outcome);
    } catch (...) {
        TakeThrown(outcome);
    }
    outcome.message = Shorten(outcome.message, messageLimit_lc);
    return outcome;
}

bool CommandRunner::EndsCallers(const ExitCode& code) noexcept
{
    return IsHostError(code, HostError::Aborted) || IsHostError(code, HostError::ExitRequested) ||
        IsHostError(code, HostError::NestedTooDeeply);
}

void CommandRunner::ShowUsage(const CommandRegistry::Entry& entry, Pipe& output)
{
    Create(entry, output)->ShowUsage();
}

std::unique_ptr<CommandBase> CommandRunner::Create(const CommandRegistry::Entry& entry, Pipe& output)
{
    std::unique_ptr<CommandBase> command(entry.factory());
    command->pipe = &output;
    return command;
}

void CommandRunner::RunLine(
    const WString& line, Pipe& output, const Environment& environment, unsigned int runFlags, Outcome& outcome)
{
    WString name;
    WString rest;
    CommandLine::SplitName(line, name, rest);
    if (name.IsEmpty())
        return;
    const CommandRegistry::Entry* entry = CommandRegistry::FindOrNull(name);
    outcome.command = entry ? entry->name : Shorten(name, nameLimit_lc);

    Abort::ThrowIfRequested();
    const NestingLevel nesting;
    if (line.Length() > maxLineLength)
        throw HostException(HostError::CommandTooLong);
    if (!entry)
        throw HostException(HostError::UnknownCommand, outcome.command);

    const auto command = Create(*entry, output);
    command->environment = environment;
    command->flags |= runFlags;
    RunCommand(*command, rest, outcome);
}

void CommandRunner::RunCommand(CommandBase& command, const WString& rest, Outcome& outcome)
{
    Options options;
    try {
        const bool takesReferences = (command.flags & CommandFlags::noSubstitution) == 0;
        ArgumentList arguments;
        CommandLine::Parse(takesReferences ? Reference::ReplaceAll(rest, command.environment) : rest, command.flags,
            arguments, options);
        command.OnStart(arguments, options);
        command.HandleStandardOptions(options);
        outcome.code = command.Main(arguments, options);
    } catch (...) {
        TakeThrown(outcome);
    }
    if (outcome.code.IsError() && outcome.code.GetCommandId() == 0)
        outcome.code.SetCommandId(static_cast<unsigned short>(command.GetCommandId()));
    command.OnExit(outcome.code);

    outcome.returnString = command.GetReturnString();
    if (outcome.code.IsError() && outcome.message.IsEmpty())
        outcome.message = command.GetFailureMessage();
    if (outcome.code.IsError() && outcome.message.IsEmpty())
        outcome.message = Describe(outcome.code, options);
}
