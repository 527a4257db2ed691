#pragma once

#include "EngineSteps.h"
#include "OperandReader.h"

#include <functional>
#include <map>
#include <vector>

class EEFunction;

/// Evaluates a converted expression as far as it can be without reading anything: operators and functions of known
/// values are left to the engine, all others give something unknown. Notes what fails whatever the unknown values are.
///
/// As in the engine, each argument of a call is a level of its own, which ends where it fails; here the rest is looked
/// at nevertheless, for it may hold faults too. No more than 200 levels stand in each other.
class AbstractEvaluation
{
public:
    AbstractEvaluation(EngineSteps& engine, OperandReader& reader, FoundList& found, EETokenStack& postfix)
        : engine(engine), reader(reader), found(found), postfix(postfix)
    {}

    /// The value of the whole. The finding that a run is sure to fail with becomes an error.
    AbstractValue Run();

private:
    using Values = std::span<const AbstractValue>;
    /// What the engine makes of values.
    using Step = std::function<bool(Values values, EEToken& result)>;

    struct Level
    {
        std::size_t base = 0;       // of its operands
        bool isReached = true;      // whatever the unknown values are
        bool mayHaveFailed = false; // at what has been looked at so far
        bool hasFailed = false;     // surely, with `failure` as its value
        AbstractValue failure{};

        bool IsSure() const noexcept { return isReached && !mayHaveFailed && !hasFailed; }
    };

    /// A call whose arguments have been evaluated.
    struct Call
    {
        const EEToken& function;
        int position; // of its "("
        Values arguments;
        const std::vector<std::size_t>& firstFindings; // of each argument
    };

    EngineSteps& engine;
    OperandReader& reader;
    FoundList& found;
    EETokenStack& postfix;
    std::vector<AbstractValue> operands;
    EEToken function; // the one that ended the last level

    // An unknown function is on record as soon as it is called, and the first error on record is that of the
    // evaluation, should that fail.
    std::size_t recorded = AbstractValue::noFinding;
    bool mayBeRecorded = false;                  // another one
    std::map<WString, WString> similarFunctions; // by names of which there is no function

    int RunLevel(Level& level);
    AbstractValue TakeResult(const Level& level);
    AbstractValue RunCall(int position, Level& level);
    AbstractValue Operate(const EEToken& operation, Level& level);
    AbstractValue Evaluate(const Call& call, Level& level);
    AbstractValue EvaluateUnknown(const Call& call, const FunctionRule& rule, Level& level);
    AbstractValue Choose(const Call& call, Level& level);
    const WString& FindSimilarFunction(const WString& name);
    AbstractValue CallNothing(const EEToken& name, Level& level);
    bool HasWrongCount(const Call& call, const EEFunction& callee, AbstractValue& result);
    void DropTested(const Call& call, FunctionManner manner);

    AbstractValue Compute(const wchar_t* code, Values values, Level& level, const Step& step);
    AbstractValue FailAlways(const wchar_t* code, Values values, unsigned int taken, Level& level, const Step& step);
    AbstractValue Fail(const AbstractValue& failure, Level& level);
    void MarkError(const AbstractValue& result);
};
