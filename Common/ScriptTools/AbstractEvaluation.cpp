#include "AbstractEvaluation.h"

#include "EvaluatorErrors.h"
#include "ExpressionEvaluatorFunctions.h"
#include "ExpressionFindings.h"
#include "HexadecimalTexts.h"
#include "Services/StackRoom.h"
#include "Text/HostError.h"

#include <algorithm>
#include <set>
#include <utility>

using namespace ValueKinds;

namespace {
bool AreKnown(std::span<const AbstractValue> values)
{
    return std::ranges::all_of(values, [](const AbstractValue& value) { return value.isKnown; });
}

bool HasError(std::span<const AbstractValue> values)
{
    return std::ranges::any_of(values, [](const AbstractValue& value) { return value.IsError(); });
}

/// Whether one of the values is of no kind that is taken.
bool IsNeverTaken(std::span<const AbstractValue> values, unsigned int taken)
{
    return std::ranges::any_of(values, [&](const AbstractValue& value) { return !value.MayBe(taken); });
}

/// Whether one of the values, which are not known, may be none that is taken. Computed numbers may be infinite.
bool IsSometimesRefused(std::span<const AbstractValue> values, unsigned int taken)
{
    return std::ranges::any_of(values, [&](const AbstractValue& value) {
        return !value.isKnown && (value.MayBe(~taken) || (value.MayBe(Number) && taken != Boolean));
    });
}

/// Equality is that of two numbers, or else of two texts; the other operators take each operand for itself.
bool IsRefused(std::span<const AbstractValue> values, std::wstring_view operation, const OperatorRule& rule)
{
    if (operation != L"=")
        return IsNeverTaken(values, rule.takes);
    return IsNeverTaken(values, Number | Boolean | NumericText) && IsNeverTaken(values, Text);
}

/// Division by a zero, which is looked at first.
bool DividesByZero(std::span<const AbstractValue> values, std::wstring_view operation)
{
    double divisor = 1;
    return operation == L"/" && values[1].isKnown && values[1].token.TryCast(divisor) && divisor == 0;
}

/// The finding that tells of an error which is one of the values'.
std::size_t FindFinding(std::span<const AbstractValue> values, const EEToken& error)
{
    const auto found = std::ranges::find_if(values, [&](const AbstractValue& value) {
        return value.isKnown && value.IsError() && value.token.GetErrorCode() == error.GetErrorCode() &&
            value.GetPosition() == error.GetPosition();
    });
    return found == values.end() ? AbstractValue::noFinding : found->finding;
}
} // namespace

// Levels

AbstractValue AbstractEvaluation::Run()
{
    Level whole;
    RunLevel(whole);
    AbstractValue result = TakeResult(whole);
    if (result.IsError() && !reader.HasUnreadable())
        MarkError(result);
    return result;
}

/// Returns what ended the level, as the engine does.
int AbstractEvaluation::RunLevel(Level& level)
{
    level.base = operands.size();
    while (!postfix.IsEmpty()) {
        const EEToken token = postfix.Pop();
        switch (token.GetType()) {
        case TT_OPERAND: operands.push_back(reader.Read(token)); break;
        case TT_PRMSEP: return TT_PRMSEP;
        case TT_FUNCOP: function = token; return TT_FUNCOP;
        case TT_PRMLIST: operands.push_back(RunCall(token.GetPosition(), level)); break;
        default: operands.push_back(Operate(token, level)); break;
        }
    }
    return TT_END;
}

AbstractValue AbstractEvaluation::TakeResult(const Level& level)
{
    AbstractValue result = level.hasFailed ? level.failure : operands.back();
    operands.resize(level.base);
    if (level.mayHaveFailed && !level.hasFailed) {
        result.isKnown = false;
        result.isPlaceSure = false;
        result.kinds |= Error;
    }
    return result;
}

AbstractValue AbstractEvaluation::RunCall(int position, Level& level)
{
    if (StackRoom::IsShort())
        throw HostException(HostError::NestedTooDeeply);
    const std::size_t first = operands.size();
    std::vector<std::size_t> firstFindings;
    int ended = TT_PRMSEP;
    while (ended == TT_PRMSEP) {
        firstFindings.push_back(found.Count());
        Level argument;
        argument.isReached = level.IsSure();
        ended = RunLevel(argument);
        operands.push_back(TakeResult(argument));
    }
    const EEToken callee = function;
    AbstractValue value = Evaluate({callee, position, Values(operands).subspan(first), firstFindings}, level);
    operands.resize(first);
    return value;
}

/// From here on, nothing in the level is reached.
AbstractValue AbstractEvaluation::Fail(const AbstractValue& failure, Level& level)
{
    if (!level.hasFailed) {
        level.failure = failure;
        level.failure.kinds = Error;
        if (level.mayHaveFailed) { // with another error
            level.failure.isKnown = false;
            level.failure.isPlaceSure = false;
        }
    }
    level.hasFailed = true;
    return AbstractValue::Unknown(Any, failure.GetPosition());
}

/// The evaluation fails. Which error it is that a run shows must be sure.
void AbstractEvaluation::MarkError(const AbstractValue& result)
{
    if (recorded != AbstractValue::noFinding)
        found.MakeError(recorded);
    else if (!mayBeRecorded && result.isKnown && result.finding != AbstractValue::noFinding &&
        found.Is(result.finding, Findings::WrongCount))
        found.MakeError(result.finding);
}

// Operators and functions

/// Leaves known values to the engine.
AbstractValue AbstractEvaluation::Compute(const wchar_t* code, Values values, Level& level, const Step& step)
{
    EEToken result;
    const bool isComputed = step(values, result);
    AbstractValue value = AbstractValue::Known(result);
    if (value.IsError())
        value.finding =
            HasError(values) ? FindFinding(values, result) : found.Warn(code, result.GetPosition(), result.GetText());
    return isComputed ? value : Fail(value, level);
}

/// What fails whatever the unknown values are: with which error is sure when the engine does not look at them. Else it
/// is shown with values such as they may be, and of a kind that is taken where they can.
AbstractValue AbstractEvaluation::FailAlways(
    const wchar_t* code, Values values, unsigned int taken, Level& level, const Step& step)
{
    EEToken result;
    step(values, result);
    const bool isSure = !EngineSteps::IsUnknown(result);
    AbstractValue failure = AbstractValue::Known(result);
    failure.isKnown = isSure;
    failure.isPlaceSure = isSure;
    if (HasError(values)) {
        failure.finding = FindFinding(values, result);
        return Fail(failure, level);
    }
    if (!isSure) {
        std::vector<AbstractValue> samples(values.begin(), values.end());
        for (AbstractValue& sample : samples)
            if (!sample.isKnown)
                sample = AbstractValue::Known(
                    MakeSample(sample.MayBe(taken) ? sample.kinds & taken : sample.kinds, sample.GetPosition()));
        if (step(samples, result)) // the engine knows better
            return AbstractValue::Unknown(Any, result.GetPosition());
    }
    failure.finding = found.Warn(code, result.GetPosition(), result.GetText());
    return Fail(failure, level);
}

AbstractValue AbstractEvaluation::Operate(const EEToken& operation, Level& level)
{
    const std::size_t count = operation.GetType() == TT_UNARYOP ? 1 : 2;
    const std::size_t first = operands.size() - count;
    const Values values = Values(operands).subspan(first);
    const std::wstring_view name = operation.GetText().View();
    const OperatorRule rule = GetOperatorRule(name);
    const wchar_t* const code = rule.isComparison ? Findings::FailingComparison : Findings::FailingOperation;
    const Step apply = [&](Values given, EEToken& result) { return engine.Apply(operation, given, result); };

    AbstractValue value = AbstractValue::Unknown(rule.gives, operation.GetPosition());
    if (AreKnown(values)) {
        value = Compute(code, values, level, apply);
    } else if (IsRefused(values, name, rule) || DividesByZero(values, name)) {
        value = FailAlways(code, values, rule.takes, level, apply);
    } else {
        const bool isEquality = rule.isComparison && !rule.isOrder;
        level.mayHaveFailed = level.mayHaveFailed || IsSometimesRefused(values, isEquality ? 0 : rule.takes);
    }
    if (!level.hasFailed)
        HexadecimalTexts(found).Look(name, rule, values, value);
    operands.resize(first);
    return value;
}

AbstractValue AbstractEvaluation::Evaluate(const Call& call, Level& level)
{
    const EEFunction* const callee = fnTable_gb.FindOrNull(call.function.GetText().View());
    if (!callee)
        return CallNothing(call.function, level);
    AbstractValue failure;
    if (HasWrongCount(call, *callee, failure))
        return Fail(failure, level);
    const FunctionRule rule = GetFunctionRule(*callee);
    DropTested(call, rule.manner);
    const bool isComputable = rule.manner != FunctionManner::Reading && rule.manner != FunctionManner::Unknown;
    if (!isComputable || !AreKnown(call.arguments))
        return EvaluateUnknown(call, rule, level);
    AbstractValue value = Compute(Findings::FailingOperation, call.arguments, level,
        [&](Values given, EEToken& result) { return engine.Call(call.function, call.position, given, result); });
    if (!level.hasFailed && rule.takes == Numeric)
        HexadecimalTexts(found).LookAtNumbers(call.arguments);
    return value;
}

AbstractValue AbstractEvaluation::EvaluateUnknown(const Call& call, const FunctionRule& rule, Level& level)
{
    if (rule.manner == FunctionManner::Choosing)
        return Choose(call, level);
    if (rule.manner == FunctionManner::Reading)
        reader.LookUp(rule.name, call.arguments);
    AbstractValue value = AbstractValue::Unknown(rule.gives | Error, call.position);
    value.isPlaceSure = false;
    if (rule.manner == FunctionManner::Strict && IsNeverTaken(call.arguments, rule.takes))
        return FailAlways(Findings::FailingOperation, call.arguments, rule.takes, level,
            [&](Values given, EEToken& result) { return engine.Call(call.function, call.position, given, result); });
    if (rule.manner != FunctionManner::Testing)
        level.mayHaveFailed = true;
    else if (rule.takes == Any && rule.gives == Boolean)
        value.kinds = Boolean;
    else
        level.mayHaveFailed = level.mayHaveFailed || IsSometimesRefused(call.arguments, rule.takes);
    return value;
}

/// IF, whose condition or chosen branch is not known.
AbstractValue AbstractEvaluation::Choose(const Call& call, Level& level)
{
    const AbstractValue& condition = call.arguments[0];
    bool isTrue = false;
    if (condition.isKnown && condition.token.TryGetValue(&isTrue)) {
        AbstractValue chosen = call.arguments[isTrue ? 1 : 2];
        if (!chosen.IsError()) {
            chosen.token.SetPosition(call.position);
            chosen.isPlaceSure = chosen.isKnown;
        }
        return chosen;
    }
    if (!condition.MayBe(Boolean))
        return FailAlways(
            Findings::FailingOperation, call.arguments.first(1), Boolean, level, [&](Values given, EEToken& result) {
                std::vector<AbstractValue> arguments(call.arguments.begin(), call.arguments.end());
                arguments[0] = given[0];
                return engine.Call(call.function, call.position, arguments, result);
            });
    level.mayHaveFailed = level.mayHaveFailed || IsSometimesRefused(call.arguments.first(1), Boolean);
    AbstractValue value = AbstractValue::Unknown(call.arguments[1].kinds | call.arguments[2].kinds, call.position);
    value.isPlaceSure = false;
    return value;
}

/// Looked for once a name.
const WString& AbstractEvaluation::FindSimilarFunction(const WString& name)
{
    const auto [place, isNew] = similarFunctions.try_emplace(name);
    if (isNew) {
        SimilarName similar(name);
        WStringArray names;
        ExpressionEvaluator::GetSupportedFunctions(names);
        similar.Offer(names);
        place->second = similar.Get();
    }
    return place->second;
}

/// The call of a function that does not exist.
AbstractValue AbstractEvaluation::CallNothing(const EEToken& name, Level& level)
{
    const WString message = WString::Format(Errors::UnknownFunction.message, name.GetText());
    const std::size_t finding =
        found.Warn(Findings::UnknownFunction, name.GetPosition(), message, FindSimilarFunction(name.GetText()));
    if (recorded == AbstractValue::noFinding && level.IsSure() && !mayBeRecorded)
        recorded = finding;
    mayBeRecorded = true;
    EEToken error(name);
    error.SetException(Errors::UnknownFunction.number, message);
    AbstractValue failure = AbstractValue::Known(error);
    failure.finding = finding;
    return Fail(failure, level);
}

/// A function that takes any number of arguments for the engine looks at their number first. Given errors alone, it can
/// do nothing but hand the first one on, or complain of their number.
bool AbstractEvaluation::HasWrongCount(const Call& call, const EEFunction& callee, AbstractValue& result)
{
    const bool looks = callee.GetParameterCount() < 0 && !callee.GetRoutine().IsGiven() &&
        GetFunctionRule(callee).manner != FunctionManner::Unknown;
    static thread_local std::set<std::pair<const EEFunction*, std::size_t>> taken; // to ask again takes an exception
    constexpr std::size_t mostRemembered = 8;
    const std::size_t count = call.arguments.size();
    if (!looks || taken.contains({&callee, count}))
        return false;
    std::vector<AbstractValue> errors;
    for (const AbstractValue& argument : call.arguments)
        errors.push_back(EngineSteps::MakeUnknown(argument.GetPosition()));
    EEToken error;
    engine.Call(call.function, call.position, errors, error);
    if (EngineSteps::IsUnknown(error) || error.GetDataType() != DT_ERR) {
        if (count <= mostRemembered)
            taken.emplace(&callee, count);
        return false;
    }
    result = AbstractValue::Known(error);
    result.finding = found.Warn(Findings::WrongCount, error.GetPosition(), error.GetText());
    result.isPlaceSure = call.arguments.back().isPlaceSure; // the complaint points at it
    result.isKnown = result.isPlaceSure;
    return true;
}

/// Errors are expected where they are tested, and in the branches of IF.
void AbstractEvaluation::DropTested(const Call& call, FunctionManner manner)
{
    const bool isChoosing = manner == FunctionManner::Choosing;
    if (isChoosing || manner == FunctionManner::Testing || manner == FunctionManner::Unknown)
        found.DropTested(call.firstFindings[isChoosing ? 1 : 0]);
}
