#pragma once

#include "BuiltIns/BuiltIns.h"
#include "Commands/RecordedCommand.h"

/// Exit numbers of the shell's own commands, besides CommonExit.
enum BuiltInExit : unsigned int
{
    badOptionValue = 3,
    badValue = 4, // an argument that does not serve
    notFound = 5,
    failed = 6
};

/// Base of the shell's own commands. Throws its failures as ExitCode.
class BuiltIn : public RecordedCommand
{
public:
    /// The record header that If and While leave in %E{RecordHeader}, an option of every command of the shell's own.
    static constexpr TextOption recordHeader{L"r", badOptionValue, 1, 32, L"A record header, without effect here"};

    /// Takes the record header; at the bench nothing is recorded.
    void HandleStandardOptions(Options& options) override;

protected:
    using RecordedCommand::RecordedCommand;
};

/// The factory of a command.
template <typename BuiltInClass>
CommandBase* Create()
{
    return new BuiltInClass();
}
