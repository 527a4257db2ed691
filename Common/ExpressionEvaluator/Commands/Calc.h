#pragma once

#include "Command.h"

/// Evaluates an expression, prints its value and leaves it in the return string.
class Calc : public Command
{
public:
    Calc();
    ExitCode Main(ArgumentList& arguments, Options& options) override;
    void ShowUsage() override;

private:
    ExitCode ShowHelpTexts();
    ExitCode Evaluate(const WString& expression, bool quiet, bool verify);
    ExitCode FailEvaluation(EvaluationError error, bool quiet, bool verify);
};

/// A new command, which the caller owns.
EE_API CommandBase* CreateCommandCalc();
