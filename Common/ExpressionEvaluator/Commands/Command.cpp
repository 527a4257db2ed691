#include "Command.h"

#include "Commands/CommandRunner.h"
#include "ExpressionEvaluator.h"
#include "Instrument/System.h"

const char* Command::GetSourceCodeTimestamp()
{
    return "Fri Sep  8 16:51:25 2023";
}

void Command::OnExit(ExitCode&) {}

EvaluationError Command::TakeError(const ExpressionEvaluator& evaluator, const WString& expression, bool logsReason)
{
    EvaluationError error;
    error.expression = expression;
    evaluator.TryGetErrorMessage(error.code, error.message, error.marker);
    if (CommandRunner::EndsCallers(error.code))
        throw error.code;
    WString reason;
    if (!evaluator.TryGetErrorReason(reason)) {
        SetFailureMessage(error.message);
        return error;
    }
    SetFailureMessage(reason);
    if (logsReason && (GetFlags() & CommandFlags::noFailureLog) == 0) {
        ExitCode code = error.code;
        if (code.GetCommandId() == 0)
            code.SetCommandId(static_cast<unsigned short>(GetCommandId()));
        System::errorLog.WriteLine(L"%-12s %s", code.ToCString(), reason);
    }
    return error;
}

ExitCode Command::EvaluateCondition(const WString& condition, bool verbose, bool& result)
{
    ExpressionEvaluator evaluator(this, 0);
    if (evaluator.TryEvaluateBool(condition, result)) {
        CommandRunner::NoteCondition(condition, result);
        return ExitCode(0);
    }
    const EvaluationError error = TakeError(evaluator, condition);
    if (verbose) // If's prefix, which While is meant to write too
        WriteReport(System::errorLog, error, L"**IF Failure: ");
    else
        WriteReport(GetPipe(), error);
    return error.code;
}

WStringArray Command::SplitList(const WString& list, unsigned int exitNumber, unsigned int maxLength,
    const WString& separators, const WString& refusal)
{
    WStringArray items;
    try {
        list.GetWStringArray(items, 1, 100, exitNumber, 1, maxLength, separators);
    } catch (const ExitCode&) {
        SetFailureMessage(refusal);
        throw;
    }
    return items;
}

WStringArray Command::SplitCommandList(const WString& list, const WString& separator, unsigned int exitNumber)
{
    return SplitList(list, exitNumber, 4096, separator, L"More than 100 commands, or one of more than 4096 characters");
}

void Command::InheritRecordHeader(Options& options, const wchar_t* variable)
{
    WString id;
    if (!options.TryGetString(recordHeaderOption, id))
        return;
    const WString header = L"-r" + id;
    GetEnvironment().SetString(L"RecordHeader", header);
    GetEnvironment().SetString(variable, header);
}

void Command::WriteUsage(const wchar_t* operatorsTitle, const wchar_t* functionsTitle)
{
    RecordedCommand::ShowUsage();
    ExpressionEvaluator::DisplaySupportedOperatorsAndFunctionsHelpText(GetPipe(), true, operatorsTitle, functionsTitle);
}
