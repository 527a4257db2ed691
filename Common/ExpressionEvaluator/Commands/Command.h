#pragma once

#include "Commands/RecordedCommand.h"
#include "ExpressionEvaluatorApi.h"

class ExpressionEvaluator;

/// The record header that a statement leaves for the commands that it runs.
constexpr TextOption recordHeaderOption(L"r", 7, 1, 32, L"Give this record header to the commands");

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

/// What the commands that take an expression have in common.
class Command : public RecordedCommand
{
public:
    const char* GetSourceCodeTimestamp() override;
    void OnStart(ArgumentList& arguments, Options& options) override;
    /// Helps with a failure that comes from an expression that begins like an option.
    void OnExit(ExitCode& exitCode) override;

protected:
    using RecordedCommand::RecordedCommand;

    /// The error of the evaluator's last evaluation. Its message is left for the report of whoever ran the command, or
    /// else the reason of a host failure, which goes to the error log too unless the run, or `logsReason`, says
    /// otherwise. Throws what ends every command.
    EvaluationError TakeError(const ExpressionEvaluator& evaluator, const WString& expression, bool logsReason = true);
    /// Evaluates a condition, and tells those who watch how it came out; false when it fails.
    bool TryEvaluateCondition(ExpressionEvaluator& evaluator, const WString& condition, bool& result);
    /// Evaluates the condition of a statement. An error is its exit code, reported on the output or, when verbose, in
    /// the error log.
    ExitCode EvaluateCondition(const WString& condition, bool verbose, bool& result);
    /// The pieces of a list, none to 100. Throws ExitCode(exitNumber), with `refusal` as the message, when there are
    /// more or one is longer than `maxLength`.
    WStringArray SplitList(const WString& list, unsigned int exitNumber, unsigned int maxLength,
        const WString& separators, const WString& refusal);
    /// The commands of a list, as SplitList.
    WStringArray SplitCommandList(const WString& list, const WString& separator, unsigned int exitNumber);
    /// Leaves the record header of its option for the commands that this one runs, under "RecordHeader" and under
    /// `variable`.
    void InheritRecordHeader(Options& options, const wchar_t* variable);

    /// Writes the lines of the record, then the operators and functions that an expression may consist of.
    void WriteUsage(const wchar_t* operatorsTitle, const wchar_t* functionsTitle);

private:
    const ArgumentList* givenArguments = nullptr;
    const Options* givenOptions = nullptr;

    WString Explain(const EvaluationError& error) noexcept;
    void NoteOptionBehind(const EvaluationError& error);
    void NoteExpressionReadAsOption(const ExitCode& exitCode);
};
