#include "Commands/CommandRunner.h"

#include "Commands/CommandLine.h"
#include "Commands/Reference.h"
#include "Commands/RunObserver.h"
#include "Instrument/System.h"
#include "Services/StackRoom.h"
#include "Text/Abort.h"
#include "Text/HostError.h"
#include "Text/SimilarName.h"

#include <exception>
#include <new>

namespace {
thread_local int nesting_lc = 0;

class NestingLevel
{
public:
    NestingLevel()
    {
        const bool isNested = nesting_lc > 0; // a command alone takes what there is, and no time to ask
        if (nesting_lc == CommandRunner::maxNesting || (isNested && StackRoom::IsShort()))
            throw HostException(HostError::NestedTooDeeply);
        ++nesting_lc;
    }
    ~NestingLevel() { --nesting_lc; }
    NestingLevel(const NestingLevel&) = delete;
    NestingLevel& operator=(const NestingLevel&) = delete;
};

thread_local const CommandRun* innermost_lc = nullptr;

template <typename... Parameters, typename... Arguments>
void TellObservers(void (RunObserver::*event)(Parameters...) noexcept, const Arguments&... arguments) noexcept
{
    for (RunObserver* observer = RunObserver::GetFirst(); observer; observer = observer->GetNext())
        (observer->*event)(arguments...);
}

/// Tells the observers of the beginning and the end of a run.
class ObservedRun
{
public:
    ObservedRun(const WString& line, const Environment& environment, unsigned int flags,
        const CommandRunner::Outcome& outcome) noexcept
        : run{line, environment, flags, outcome, innermost_lc, innermost_lc ? innermost_lc->depth + 1 : 0}
    {
        innermost_lc = &run;
        TellObservers(&RunObserver::OnBegin, run);
    }
    ~ObservedRun()
    {
        TellObservers(&RunObserver::OnEnd, run);
        innermost_lc = run.caller;
    }
    ObservedRun(const ObservedRun&) = delete;
    ObservedRun& operator=(const ObservedRun&) = delete;

private:
    const CommandRun run;
};

constexpr unsigned int nameLimit = 60;
constexpr unsigned int messageLimit = 500;

WString Shorten(const WString& text, unsigned int limit)
{
    return text.Length() <= limit ? text : text.Left(limit) + WString(L"...");
}

ExitCode MakeCode(HostError error) noexcept
{
    return ExitCode(0, ExitCode::hostModule, static_cast<unsigned int>(error));
}

/// Makes the exception that is being handled the outcome. Needs no memory: a code whose message cannot be had stands
/// alone.
void TakeThrown(CommandRunner::Outcome& outcome) noexcept
try {
    outcome.message.Clear();
    try {
        throw;
    } catch (const HostException& exception) {
        outcome.code = exception;
        outcome.message = Shorten(exception.GetMessage(), messageLimit);
    } catch (const ExitCode& code) {
        outcome.code = code;
    } catch (const std::bad_alloc&) {
        outcome.code = MakeCode(HostError::OutOfMemory);
        outcome.message = outOfMemoryMessage;
    } catch (const std::exception& exception) {
        outcome.code = MakeCode(HostError::UnexpectedException);
        const HostException described(HostError::UnexpectedException, WString::FromUtf8(exception.what()));
        outcome.message = Shorten(described.GetMessage(), messageLimit);
    } catch (...) {
        outcome.code = MakeCode(HostError::UnexpectedException);
    }
} catch (...) { // nothing to add to the code
}

WString DescribeUnknownCommand(const WString& name)
{
    SimilarName similar(name);
    for (const CommandRegistry::Entry& entry : CommandRegistry::GetEntries())
        similar.Offer(entry.name);
    return name + similar.GetQuestion();
}

/// Asks for the option that was meant by one that was refused or that nobody asked for.
WString AskForOption(const WString& given, const CommandBase& command)
{
    SimilarName similar(given.Substring(1));
    if (command.GetRecord()) {
        for (const OptionRecord& option : command.GetRecord()->options)
            similar.Offer(option.name);
    }
    return given + (similar.Get().IsEmpty() ? WString() : DidYouMean(L"-" + similar.Get()));
}

/// The messages of codes whose meaning is the same in all commands.
WString Describe(const ExitCode& code, const CommandBase& command, const Options& options)
{
    if (!options.GetRefusedOption().IsEmpty())
        return L"Bad value of option " + AskForOption(options.GetRefusedOption(), command);
    if (code.GetModule() == 0 && code.GetNumber() == CommonExit::wrongCount)
        return L"Wrong number of arguments";
    if (code.GetModule() == 0 && code.GetNumber() == CommonExit::badOption)
        return HostException(HostError::UnknownOption, AskForOption(options.GetUnusedOption(), command)).GetMessage();
    return GetHostMessage(code);
}

/// Finds words for a failure that has none. The failure stays what it is when that fails.
void AddMessage(CommandRunner::Outcome& outcome, const CommandBase& command, const Options& options) noexcept
try {
    if (outcome.code.IsError() && outcome.message.IsEmpty())
        outcome.message = Shorten(command.GetFailureMessage(), messageLimit);
    if (outcome.code.IsError() && outcome.message.IsEmpty())
        outcome.message = Shorten(Describe(outcome.code, command, options), messageLimit);
} catch (...) { // nothing to add to the code
}
} // namespace

CommandRunner::Outcome CommandRunner::Run(
    const WString& line, Pipe& output, const Environment& environment, unsigned int runFlags) noexcept
{
    Outcome outcome;
    {
        const ObservedRun observed(line, environment, runFlags, outcome);
        try {
            RunLine(line, output, environment, runFlags, outcome);
        } catch (...) {
            TakeThrown(outcome);
        }
        output.Flush();
    }
    return outcome;
}

const CommandRun* CommandRunner::GetRunning() noexcept
{
    return innermost_lc;
}

void CommandRunner::NoteCondition(const WString& condition, bool holds, const WString& variableTrace) noexcept
{
    if (innermost_lc)
        TellObservers(&RunObserver::OnCondition, *innermost_lc, condition, holds, variableTrace);
}

void CommandRunner::NoteBadExpression(const WString& expression, std::size_t place) noexcept
{
    if (innermost_lc)
        TellObservers(&RunObserver::OnBadExpression, *innermost_lc, expression, place);
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
    outcome.command = entry ? entry->name : Shorten(name, nameLimit);

    Abort::ThrowIfRequested();
    System::usage.WriteCountsIfDue(); // while a command runs others for long
    const NestingLevel nesting;
    if (line.Length() > maxLineLength)
        throw HostException(HostError::CommandTooLong);
    if (!entry)
        throw HostException(HostError::UnknownCommand, DescribeUnknownCommand(outcome.command));

    const auto command = Create(*entry, output);
    command->environment = environment;
    command->flags |= runFlags;
    RunCommand(*command, rest, outcome);
}

/// A failure that names no command is this one's.
static void Stamp(ExitCode& code, CommandBase& command)
{
    if (code.IsError() && code.GetCommandId() == 0)
        code.SetCommandId(static_cast<unsigned short>(command.GetCommandId()));
}

WString CommandRunner::ReplaceReferences(const CommandBase& command, const WString& rest)
{
    if (command.flags & CommandFlags::noSubstitution)
        return rest;
    WString replaced = Reference::ReplaceAll(rest, command.environment);
    if (RunObserver::GetFirst() && replaced != rest)
        TellObservers(&RunObserver::OnReplaced, *innermost_lc, replaced);
    return replaced;
}

void CommandRunner::RunCommand(CommandBase& command, const WString& rest, Outcome& outcome)
{
    ArgumentList arguments;
    Options options;
    try {
        CommandLine::Parse(ReplaceReferences(command, rest), command.flags, arguments, options);
        command.OnStart(arguments, options);
        command.HandleStandardOptions(options);
        outcome.code = command.Main(arguments, options);
    } catch (...) {
        TakeThrown(outcome);
    }
    Stamp(outcome.code, command);
    try {
        command.OnExit(outcome.code);
    } catch (...) {
        TakeThrown(outcome);
    }
    Stamp(outcome.code, command);
    outcome.returnString = std::move(command.GetReturnString());
    outcome.notes = std::move(command.notes);
    AddMessage(outcome, command, options);
}
