#pragma once

#include "Command.h"

/// Runs a command list as long as a condition holds.
class While : public Command
{
public:
    While();
    ExitCode Main(ArgumentList& arguments, Options& options) override;
    void ShowUsage() override;

    /// True when the code's text matches one of the patterns (`*`, `?`, any case).
    static bool IsExitCodeIgnored(const ExitCode& code, const WStringArray& patterns);

private:
    struct Loop;

    void ReadOptions(Options& options, Loop& loop);
    ExitCode RunLoop(const Loop& loop);
    ExitCode RunCommands(const Loop& loop);
};

/// A new command, which the caller owns.
EE_API CommandBase* CreateCommandWhile();
