#pragma once

#include "Commands/CommandBase.h"
#include "Commands/CommandRegistry.h"

#include <span>

/// What the registry, the runner and Help need to know of a command of the shell's own.
struct BuiltInRecord
{
    const wchar_t* name;
    unsigned int id;
    std::span<const wchar_t* const> usage; // lines
    unsigned int flags = 0;                // CommandFlags
};

/// Exit numbers of the shell's own commands.
enum BuiltInExit : unsigned int
{
    badCount = 1,  // wrong number of arguments
    badOption = 2, // an option that the command does not know, or that another one excludes
    badOptionValue = 3,
    badValue = 4, // an argument that does not serve
    notFound = 5,
    failed = 6
};

/// Base of the shell's own commands. Throws its failures as ExitCode.
class BuiltIn : public CommandBase
{
public:
    WString GetName() override { return record.name; }
    unsigned int GetCommandId() override { return record.id; }
    const char* GetSourceCodeTimestamp() override { return ""; }
    void ShowUsage() override;
    /// Takes the record header -r<id> that If and While leave in %E{RecordHeader}; at the bench nothing is recorded.
    void HandleStandardOptions(Options& options) override;

protected:
    explicit BuiltIn(const BuiltInRecord& record);

    static constexpr unsigned int anyCount = ~0u;

    /// The checks behind the reading of the options: the number of arguments, and that no option is left.
    void Accept(const ArgumentList& arguments, const Options& options, unsigned int minCount, unsigned int maxCount);
    [[noreturn]] void Fail(BuiltInExit number, const WString& message);

private:
    const BuiltInRecord& record;
};

/// Adds the shell's own commands to CommandRegistry.
void AddBuiltIns();
