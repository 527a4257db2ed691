#pragma once

#include "Conversions.h"
#include "EETokenMap.h"
#include "ExpressionEvaluator.h"
#include "Instrument/Environment.h"

#include <memory>
#include <mutex>

/// An evaluator with its variables, and an environment in which commands run. Threads use it by turns; a function that
/// one of its expressions calls may use it too.
class Session
{
public:
    /// `readsEnvironment` lets expressions see what commands set.
    explicit Session(bool readsEnvironment);

    /// Adds EvaluatorFlags.
    void AddFlags(unsigned int flags);

    /// Throws labshell.Error.
    py::object Evaluate(const py::str& expression);
    /// The lines that the command line wrote, one below the other. Throws labshell.CommandError.
    py::str Run(const py::str& line);
    /// What the last evaluation has read and called, a line each; empty without the flag for that.
    py::list GetTrace();

private:
    friend class VariableTable;
    friend class EnvironmentTable;

    /// The turn of a thread. While it waits for that the others go on, and an interrupt ends the wait.
    class Turn
    {
    public:
        explicit Turn(Session& session);

    private:
        std::unique_lock<std::recursive_timed_mutex> lock;
    };

    std::recursive_timed_mutex mutex;
    EETokenMap map;
    Environment environment;
    ExpressionEvaluator evaluator;

    [[noreturn]] void RaiseError(const py::str& expression);
};
