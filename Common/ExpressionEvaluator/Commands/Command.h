#pragma once

#include "Commands/CommandBase.h"
#include "ExpressionEvaluatorApi.h"

#include <span>

class ExpressionEvaluator;

/// One line of a usage text: a format of Pipe::WriteLine, and the text for the "%s" in it if there is one.
struct UsageLine
{
    const wchar_t* format;
    const wchar_t* argument = L"";
};

/// Why an expression could not be evaluated.
struct EvaluationError
{
    ExitCode code;
    WString message;
    WString expression;
    WString marker; // blanks and "^": under the expression it points at the place
};

/// Reports an evaluation error in three lines, to a Pipe or a LogFile: the message behind `prefix`; the expression and
/// the marker behind `indent`.
template <typename Output>
void WriteReport(Output& output, const EvaluationError& error, const wchar_t* prefix = L"", const wchar_t* indent = L"")
{
    output.WriteLine(L"%s%s", prefix, error.message);
    output.WriteLine(L"%s%s", indent, error.expression);
    output.WriteLine(L"%s%s", indent, error.marker);
}

/// What the commands that take an expression have in common. Such a command reads its options, checks its arguments,
/// calls TryStart, and only then does its work.
class Command : public CommandBase
{
public:
    const char* GetSourceCodeTimestamp() override;
    void OnExit(ExitCode& exitCode) override;

protected:
    Command();

    /// Fails without output; the message is for the report of whoever ran the command.
    ExitCode Refuse(unsigned int exitNumber, const WString& message);
    /// Tells the caller that the command line is accepted and waits until the command may go on. False, with
    /// ExitCode(2) in `refusal`, when an option was given that the command did not ask for.
    bool TryStart(const Options& options, ExitCode& refusal);

    /// The error of the evaluator's last evaluation, whose message is left for the report of whoever ran the command.
    EvaluationError TakeError(const ExpressionEvaluator& evaluator, const WString& expression);
    /// Evaluates the condition of a statement. An error is its exit code, reported on the output or, when verbose, in
    /// the error log.
    ExitCode EvaluateCondition(const WString& condition, bool verbose, bool& result);
    /// The pieces of a list, none to 100. Throws ExitCode(exitNumber), with `refusal` as the message, when there are
    /// more or one is longer than `maxLength`.
    WStringArray SplitList(const WString& list, unsigned int exitNumber, unsigned int maxLength,
        const WString& separators, const WString& refusal);
    /// The commands of a list, as SplitList.
    WStringArray SplitCommandList(const WString& list, const WString& separator, unsigned int exitNumber);
    /// Leaves the record header of the option -r for the commands that this one runs, under "RecordHeader" and under
    /// `variable`.
    void InheritRecordHeader(Options& options, const wchar_t* variable);

    /// Writes the lines, then the operators and functions that an expression may consist of.
    void WriteUsage(std::span<const UsageLine> lines, const wchar_t* operatorsTitle, const wchar_t* functionsTitle);
};
