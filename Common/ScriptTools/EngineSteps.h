#pragma once

#include "AbstractValue.h"
#include "ExpressionEvaluator.h"

#include <span>

/// Lets the engine apply one operator, or call one function, so that its rules and messages are those of a run. What is
/// not known goes in as an error of its own, which comes out again when the engine gets to see it before it finds a
/// fault elsewhere.
class EngineSteps
{
public:
    /// What the engine makes of it: false when that fails, with the error in `result`.
    bool Apply(const EEToken& operation, std::span<const AbstractValue> operands, EEToken& result);
    /// A call whose "(" is at a position.
    bool Call(const EEToken& function, int position, std::span<const AbstractValue> arguments, EEToken& result);

    /// Whether the engine would have had to know more.
    static bool IsUnknown(const EEToken& result) noexcept;
    static AbstractValue MakeUnknown(int position);

    ExpressionEvaluator& GetEvaluator() noexcept { return evaluator; }

private:
    ExpressionEvaluator evaluator{true, Environment(), nullptr, nameCharacters_lc, EvaluatorFlags::readNothing};

    static constexpr const wchar_t* nameCharacters_lc =
        L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_0123456789.";
};
