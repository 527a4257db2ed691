#pragma once

#include "Command.h"

/// Sets, shows, lists and deletes environment variables.
class SetCommand : public Command
{
public:
    SetCommand();
    ExitCode Main(ArgumentList& arguments, Options& options) override;
    void OnExit(ExitCode& exitCode) override;
    void ShowUsage() override;

    /// Lists the variables whose names match the pattern (`*`, `?`, any case).
    ExitCode List(const WString& pattern);
    /// Deletes these variables.
    ExitCode WildcardDelete(const WString& pattern);

private:
    ExitCode SplitArgument(const WString& argument, WString& name, WString& expression);
    bool TryGetNames(WStringArray& names);
    ExitCode Assign(const WString& name, const WString& expression, bool verbose);
    ExitCode Delete(const WString& name);
    ExitCode Show(const WString& name, const WString& value);
};

/// A new command, which the caller owns.
EE_API CommandBase* CreateCommandSetCommand();
