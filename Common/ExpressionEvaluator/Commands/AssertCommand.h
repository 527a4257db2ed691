#pragma once

#include "Command.h"

/// Fails unless an expression is true, on request after some retries.
class AssertCommand : public Command
{
public:
    AssertCommand();
    ExitCode Main(ArgumentList& arguments, Options& options) override;
    void ShowUsage() override;

private:
    bool LogsFailures();
    ExitCode FailEvaluation(const EvaluationError& error, bool quiet, bool logFailure);
    ExitCode FailAssertion(const WString& expression, const WString& variableTrace, bool logFailure);
    void WriteFailureLine(const WString& line, bool logFailure);
};

/// A new command, which the caller owns.
EE_API CommandBase* CreateCommandAssertCommand();
