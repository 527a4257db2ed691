#pragma once

#include "Commands/CommandBase.h"
#include "Commands/CommandRecord.h"

/// Base of the commands that are described by a record. Such a command reads its options, checks its arguments, calls
/// Start (or Accept, which counts the arguments as well), and only then does its work.
class HOST_API RecordedCommand : public CommandBase
{
public:
    WString GetName() override;
    unsigned int GetCommandId() override;
    const char* GetSourceCodeTimestamp() override;
    /// Writes the lines of the record.
    void ShowUsage() override;

protected:
    /// Sets the flags of the record, which is not copied.
    explicit RecordedCommand(const CommandRecord& record);

    /// Refuses an option that the command did not ask for with CommonExit::badOption. Otherwise tells the caller that
    /// the command line is accepted, waits until the command may go on, and returns ExitCode(0).
    ExitCode Start(const Options& options);
    /// Starts a command that takes so many arguments; throws the refusal.
    void Accept(const ArgumentList& arguments, const Options& options, unsigned int minCount, unsigned int maxCount);

    /// The same with the numbers of the record.
    void Accept(const ArgumentList& arguments, const Options& options);

    /// The code to fail with; the message is for the report of whoever ran the command.
    ExitCode Refuse(unsigned int exitNumber, const WString& message);
    /// Throws it.
    [[noreturn]] void Fail(unsigned int exitNumber, const WString& message);
};
