#include "AssertCommand.h"

#include "ExpressionEvaluator.h"
#include "Instrument/System.h"

namespace {
constexpr int retryDelay = 100; // milliseconds

constexpr UsageLine usage_lc[] = {
    L"Usage: Assert [<options>] <boolean expression>",
    L" Evaluates the specified expression.",
    L" If the expression result is true, the command succeeds.",
    L" If the expression is false, the command generates an error.",
    L" NOTE: Any options must preceede the expression",
    L" Example: Assert %%S{HotelDoorOpen}=true",
    L"Arguments:",
    L" <boolean expression>   The expression that must be true.",
    L"Options:",
    L" -q     Quiet mode, do not display anything, just return the value",
    L"         in the command return string.",
    L" -c<retryCount> Retry max this number of times if the assertion fails.",
    L"                There is a 0.1s delay between the retries.",
    L"                Typically needed for testing status updates from server",
    L"                 commands.",
    L"",
};

constexpr FlagOption quiet_lc(L"q", 3, L"Show no retries and no error of the evaluation");
constexpr WholeNumberOption retryCount_lc(L"c", 4, 1, 1000, L"Try again so many times, every 0.1 s");
constexpr OptionRecord options_lc[] = {quiet_lc, retryCount_lc};

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Expression}};

constexpr CommandRecord record_lc = {L"Assert", 9015, CreateCommandAssertCommand, usage_lc, options_lc,
    CommandFlags::restAsItStands, arguments_lc, {1, 1}};

enum ExitNumber : unsigned int
{
    assertionFailed = 13,
    badLogSetting = 20
};
} // namespace

CommandBase* CreateCommandAssertCommand()
{
    return new AssertCommand;
}

AssertCommand::AssertCommand() : Command(record_lc) {}

ExitCode AssertCommand::Main(ArgumentList& arguments, Options& options)
{
    const bool quiet = options.TryGetFlag(quiet_lc);
    int retryCount = 0;
    options.TryGetInt(retryCount_lc, retryCount);

    if (arguments.Count() == 0)
        return ExitCode(CommonExit::wrongCount);
    if (const ExitCode refusal = Start(options); refusal.IsError())
        return refusal;

    const WString& expression = arguments.At(0);
    const bool logFailure = LogsFailures();
    ExpressionEvaluator evaluator(this, 0);
    evaluator.AddFlags(EvaluatorFlags::traceVariables);

    for (int attempt = 0; attempt <= retryCount; ++attempt) {
        evaluator.ClearVariableTrace();
        bool holds = false;
        if (!TryEvaluateCondition(evaluator, expression, holds))
            return FailEvaluation(TakeError(evaluator, expression, logFailure), quiet, logFailure);
        if (holds)
            return ExitCode(0);
        if (retryCount == 0)
            break;
        // After the last attempt too, as is meant.
        if (!quiet)
            GetPipe().WriteLine(L"Retry: %d", attempt + 1);
        SleepWithoutSimulationMode(retryDelay);
    }
    return FailAssertion(expression, evaluator.GetVariableTrace(), logFailure);
}

bool AssertCommand::LogsFailures()
{
    try {
        return System::config.GetBoolOrUseDefault(L"Debug", L"LogAssertFail", true, badLogSetting) &&
            (GetFlags() & CommandFlags::noFailureLog) == 0;
    } catch (const ExitCode&) {
        SetFailureMessage(L"[Debug]LogAssertFail is not a boolean");
        throw;
    }
}

ExitCode AssertCommand::FailEvaluation(const EvaluationError& error, bool quiet, bool logFailure)
{
    if (!quiet) {
        WriteReport(GetPipe(), error);
        if (logFailure)
            WriteReport(System::errorLog, error);
    }
    return error.code;
}

ExitCode AssertCommand::FailAssertion(const WString& expression, const WString& variableTrace, bool logFailure)
{
    const WString message = WString::Format(L"Assertion \"%s\" failed!", expression);
    WriteFailureLine(message, logFailure);
    std::size_t position = 0;
    WString variable;
    while (!(variable = variableTrace.StrTok(L"\n", position)).IsEmpty())
        WriteFailureLine(L"  " + variable, logFailure);
    return Refuse(assertionFailed, message);
}

void AssertCommand::WriteFailureLine(const WString& line, bool logFailure)
{
    GetPipe().DoWriteLine(line);
    if (logFailure)
        System::errorLog.DoWriteLine(line);
}

void AssertCommand::ShowUsage()
{
    WriteUsage(L"Supported operators:", L"Supported functions:");
}
