#pragma once

#include "Containers/ObjectHashTable.h"
#include "EEToken.h"
#include "EETokenStack.h"
#include "ExpressionEvaluatorApi.h"
#include "LiveCounter.h"
#include "Text/WStringArray.h"

#include <span>
#include <string_view>

class ExpressionEvaluator;

/// A function that expressions can call. It finds its evaluated arguments on the stack, the first on top and nothing
/// else beneath the last, and writes its answer into the result token, which arrives with the position of the call. A
/// wrong use is thrown as ExpressionEvaluatorException; a failed computation becomes an error value that the expression
/// can test. Holds no state of a call, so that all threads share it.
class EE_API EEFunction : public Object
{
public:
    /// `parameterCount` is exact, or -1 for a number that the function checks itself.
    EEFunction(const wchar_t* name, int parameterCount);
    ~EEFunction() override = default;
    EEFunction(const EEFunction&) = delete;
    EEFunction& operator=(const EEFunction&) = delete;

    /// For functions that need their arguments only. The base throws code 144.
    virtual void Evaluate(EEToken& result, EETokenStack& arguments);
    /// For functions that need the calling evaluator, which is null when there is none. The base forwards to the other
    /// overload.
    ///
    /// The function may evaluate with it, read the error and the missing variable's name of what it has evaluated, and
    /// set variables: a map that it changes is seen by what it evaluates from then on, not by the running expression,
    /// whose names have been read. The evaluation that called it then goes on with its own record; both add to one
    /// variable trace. Calls count towards the depth limit of the expression (error 513) through such evaluations too.
    /// The function must not call Clear nor the single steps (what these record is the outer evaluation's), nor use the
    /// evaluator after it has returned. An abort, and all else that ends every command, also ends the evaluation that
    /// called the function, whatever it answers or throws.
    virtual void Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator* evaluator);

    /// A routine of numbers that gives what Evaluate does: one of a single number, whose NaN becomes the error value
    /// 504, or one of all arguments. It may throw as Evaluate may, and evaluates nothing.
    struct Routine
    {
        double (*ofOne)(double) = nullptr;
        double (*ofMany)(std::span<const double>) = nullptr;
        bool IsGiven() const noexcept { return ofOne || ofMany; }
    };
    /// The routine that spares the engine the tokens, if there is one.
    const Routine& GetRoutine() const noexcept { return routine; }
    void SetRoutine(const Routine& newRoutine) noexcept { routine = newRoutine; }

    const WString& GetName() const noexcept { return name; }
    const WString& GetLowerCaseName() const noexcept { return lowerCaseName; }
    int GetParameterCount() const noexcept { return parameterCount; }

private:
    const WString name;
    const WString lowerCaseName;
    const int parameterCount;
    Routine routine;

    static std::atomic<int> liveCount;
    friend int GetDebugObjectCountExpressionEvaluator_CExprFn();
    [[no_unique_address]] LiveCounter<liveCount> liveCounter;
};

/// A routine of one number as a function. A NaN answer becomes the error value 504 "Invalid operation". What the
/// routine throws is thrown by the call.
class EE_API EEMathFunctionPointer : public EEFunction
{
public:
    EEMathFunctionPointer(const wchar_t* name, double (*routine)(double));
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments) override;

private:
    double (*const routine)(double);
    const WString routineName;
};

/// All functions by name, in any case. Built while plug-ins are loaded and only read afterwards, so it needs no lock.
class EE_API EEFunctionTable
{
public:
    EEFunctionTable();
    virtual ~EEFunctionTable() = default;
    EEFunctionTable(const EEFunctionTable&) = delete;
    EEFunctionTable& operator=(const EEFunctionTable&) = delete;

    /// The function of that name, owned by the table, or null.
    EEFunction* FindOrNull(std::wstring_view name) const;
    EEFunction* FindOrNull(const HashedName& name) const;
    /// True for the name of a function; `parameterCount`, when given, receives its rule.
    bool IsFunction(const wchar_t* name, int* parameterCount) const;
    /// Calls the function; throws code 200 when there is none of that name.
    void Evaluate(EEToken& result, const wchar_t* name, EETokenStack& arguments, ExpressionEvaluator* evaluator) const;
    /// All names, in no particular order.
    void GetSupportedFunctions(WStringArray& names) const;
    /// Adds the function under its own name and takes ownership of it. False for null and for a name that is taken:
    /// that function is destroyed, and the plug-in that is being loaded is refused. For the static initialisers of
    /// plug-ins; nothing may be added once commands run.
    bool AddFn(EEFunction* function);

private:
    ObjectHashTable functions;
};

extern EE_API EEFunctionTable fnTable_gb;

/// How many function objects are alive in the process.
EE_API int GetDebugObjectCountExpressionEvaluator_CExprFn();
