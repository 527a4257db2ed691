#include "Session.h"

#include "Commands/CommandRunner.h"
#include "EEMissingVariableException.h"
#include "Failure.h"
#include "Runs.h"
#include "Text/Abort.h"

#include <chrono>

static constexpr int variableBuckets = 33;

/// An expression so short takes microseconds, and less than it takes to hand Python's lock to others and back.
static constexpr unsigned int shortExpression = 1000;

static void CallHandlersOfSignals()
{
    const py::gil_scoped_acquire python;
    if (PyErr_CheckSignals() != 0)
        throw py::error_already_set();
}

Session::Turn::Turn(Session& session) : lock(session.mutex, std::try_to_lock)
{
    if (lock.owns_lock())
        return;
    constexpr std::chrono::milliseconds step(50);
    const LongRun others;
    while (!lock.try_lock_for(step) && !Abort::IsRequested())
        CallHandlersOfSignals();
    Abort::ThrowIfRequested();
}

Session::Session(bool readsEnvironment)
    : map(variableBuckets), evaluator(readsEnvironment, environment, nullptr, L"", 0)
{
    evaluator.Clear(); // which gives names their usual characters
    evaluator.SetVariableMap(&map);
}

void Session::AddFlags(unsigned int flags)
{
    const Turn turn(*this);
    evaluator.AddFlags(flags);
}

py::object Session::Evaluate(const py::str& expression)
{
    const WString text = ToText(expression);
    const Running running;
    const Turn turn(*this);
    const Failure::Scope failures;
    EEToken result;
    bool isEvaluated = false;
    evaluator.ClearVariableTrace();
    if (text.Length() <= shortExpression) {
        isEvaluated = evaluator.TryEvaluate(text, result);
    } else {
        const LongRun run;
        isEvaluated = evaluator.TryEvaluate(text, result);
    }
    if (!isEvaluated)
        RaiseError(expression);
    return ToPython(result);
}

void Session::RaiseError(const py::str& expression)
{
    ExitCode code;
    WString message;
    WString marker;
    int position = 0;
    evaluator.TryGetErrorMessage(code, message, marker);
    evaluator.TryGetErrorMessage(code, message, &position);
    WString reason;
    if (evaluator.TryGetErrorReason(reason))
        message = reason;
    if (code.GetModule() == evaluatorModule && code.GetNumber() == Errors::MissingVariable.number)
        message = GenerateMissingVariableMessage(message); // which of a lone variable is its name
    Failure::Raise("Error", code, ToPython(message), py::int_(position), expression);
}

py::str Session::Run(const py::str& line)
{
    const WString text = ToText(line);
    const Running running;
    const Turn turn(*this);
    const Failure::Scope failures;
    ArrayPipe output;
    CommandRunner::Outcome outcome;
    {
        const LongRun run;
        outcome = CommandRunner::Run(text, output, environment, 0);
    }
    py::str lines = py::str("\n").attr("join")(ToPython(output.lines));
    if (outcome.code.IsError())
        Failure::Raise("CommandError", outcome.code, ToPython(outcome.message), line, lines, ToPython(outcome.notes));
    return lines;
}

py::list Session::GetTrace()
{
    const Turn turn(*this);
    return ToPython(evaluator.GetVariableTrace()).attr("splitlines")();
}
