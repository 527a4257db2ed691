#pragma once

#include "Command.h"

/// Runs one of two command lists by a condition.
class If : public Command
{
public:
    If();
    ExitCode Main(ArgumentList& arguments, Options& options) override;
    void ShowUsage() override;

    /// Runs every command of the list, also after one that fails.
    void RunCommandList(const WString& list, const WString& separator);

private:
    struct Statement;

    ExitCode SplitStatement(const WString& text, Statement& statement);
};

/// A new command, which the caller owns.
EE_API CommandBase* CreateCommandIf();
