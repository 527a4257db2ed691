#include "Command.h"

#include "Commands/CommandRunner.h"
#include "EEMissingVariableException.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorException.h"
#include "Hints.h"
#include "Instrument/System.h"
#include "Text/CharacterCase.h"

#include <algorithm>

const char* Command::GetSourceCodeTimestamp()
{
    return "Fri Sep  8 16:51:25 2023";
}

/// Whether an option, without its dash, is one of that row.
static bool IsOptionOf(const OptionRecord& row, const WString& text)
{
    return row.kind == OptionKind::Flag ? EqualsIgnoreCase(text.View(), row.name) : text.StartsWith(row.name, true);
}

void Command::OnStart(ArgumentList& arguments, Options& options)
{
    givenArguments = &arguments;
    givenOptions = &options;
}

void Command::OnExit(ExitCode& exitCode)
try {
    if (exitCode.IsError() && givenOptions)
        NoteExpressionReadAsOption(exitCode);
} catch (...) { // the failure is told without
}

void Command::NoteExpressionReadAsOption(const ExitCode& exitCode)
{
    const bool isRefused = !givenOptions->GetRefusedOption().IsEmpty();
    const WString option = isRefused ? givenOptions->GetRefusedOption() : givenOptions->GetLastUnusedOption();
    const unsigned int number = exitCode.GetModule() == 0 ? exitCode.GetNumber() : 0;
    if (option.IsEmpty() || (!isRefused && number != CommonExit::wrongCount && number != CommonExit::badOption))
        return;
    const auto isOfRow = [&](const OptionRecord& row) { return IsOptionOf(row, option.Substring(1)); };
    const bool isKnown = !Hints::IsCalculated(option) && std::ranges::any_of(GetRecord()->options, isOfRow);
    const WString rest = givenArguments->Count() == 0 ? WString() : givenArguments->At(0);
    if (!isKnown && (Hints::IsCalculated(option) || (!isRefused && Hints::IsContinuation(rest))))
        AddNote(WString::Format(
            LR"("%s" was read as an option; write "--" before an expression that begins with "-")", option));
}

/// Finds out what may help with the error: leaves notes, and yields what is to stand behind the message.
WString Command::Explain(const EvaluationError& error) noexcept
try {
    Hints::Explanation explanation = Hints::Explain(error, GetEnvironment());
    for (const WString& note : explanation.notes)
        AddNote(note);
    NoteOptionBehind(error);
    return explanation.question;
} catch (...) { // the failure is told without
    return WString();
}

/// An option at the end of an expression is a variable that is subtracted.
void Command::NoteOptionBehind(const EvaluationError& error)
{
    if (error.code.GetModule() != evaluatorModule || error.code.GetNumber() != Errors::MissingVariable.number)
        return;
    const WString name = PruneVariableName(error.message);
    const auto isOfRow = [&](const OptionRecord& row) { return IsOptionOf(row, name); };
    if (error.expression.EndsWith(L" -" + name, true) && std::ranges::any_of(GetRecord()->options, isOfRow))
        AddNote(WString::Format(
            LR"("-%s" was read as part of the expression; write options in front: %s -%s ...)", name, GetName(), name));
}

EvaluationError Command::TakeError(const ExpressionEvaluator& evaluator, const WString& expression, bool logsReason)
{
    EvaluationError error;
    error.expression = expression;
    evaluator.TryGetErrorMessage(error.code, error.message, error.marker);
    if (CommandRunner::EndsCallers(error.code))
        throw error.code;
    CommandRunner::NoteBadExpression(expression, error.marker.IsEmpty() ? 0 : error.marker.Length() - 1);
    WString reason;
    if (!evaluator.TryGetErrorReason(reason)) {
        SetFailureMessage(error.message + Explain(error));
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

bool Command::TryEvaluateCondition(ExpressionEvaluator& evaluator, const WString& condition, bool& result)
{
    EEToken value;
    if (!evaluator.TryEvaluate(condition, value))
        return false;
    if (!value.TryCast(result)) {
        evaluator.ErrMsg(ExpressionEvaluatorException(Errors::NoBool, 0));
        return false;
    }
    if (value.GetDataType() == DT_NUM)
        AddNote(
            L"a number counts as true when it is 0, and as false otherwise; compare it, as in " + condition + L"<>0");
    CommandRunner::NoteCondition(condition, result, evaluator.GetVariableTrace());
    return true;
}

ExitCode Command::EvaluateCondition(const WString& condition, bool verbose, bool& result)
{
    ExpressionEvaluator evaluator(this, 0);
    if (TryEvaluateCondition(evaluator, condition, result))
        return ExitCode(0);
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
