// What the operators do with their operands.

#include "Evaluation.h"

#include "ExpressionEvaluator.h"
#include "Text/Abort.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"

#include <cmath>
#include <functional>
#include <limits>
#include <type_traits>

/// Numbers closer than this are equal, whatever their size.
static constexpr double equalityTolerance_lc = 10 * std::numeric_limits<double>::epsilon();

// Operands

/// The top operand of the level, which stays where it is until the next push; null with the error in `result`.
inline const Item* Evaluation::Pop(Item& result)
{
    if (workspace.operands.GetSize() != base)
        return &workspace.PopOperand();
    Fail(Errors::StackEmpty, 0, result);
    return nullptr;
}

inline bool Evaluation::PopNumber(double& number, Item& result)
{
    const Item* const operand = Pop(result);
    return operand && ReadNumber(*operand, number, result);
}

inline bool Evaluation::PopTruth(bool& truth, Item& result)
{
    const Item* const operand = Pop(result);
    Refusal refusal;
    return operand && (TakeTruth(*operand, truth, refusal) || Refuse(*operand, refusal, result));
}

bool Evaluation::ReadText(
    const Item& operand, bool converts, NumberBuffer& buffer, std::wstring_view& text, Item& result)
{
    Refusal refusal;
    return TakeText(operand, converts, buffer, text, refusal) || Refuse(operand, refusal, result);
}

/// The value is the result of the level as far as it has got, which shows where the level fails without an error of its
/// own.
template <typename Value>
bool Evaluation::Give(Value value, Item& result)
{
    result.SetValue(value);
    return Put(result);
}

/// The left one of two numbers on top, as operators nearly always find them; null for others, and while the log is on.
inline Item* Evaluation::FindNumbers() const
{
    Stack<Item>& operands = workspace.operands;
    const bool areNumbers = operands.GetSize() >= base + 2 && operands.GetTop(0).IsFiniteNumber() &&
        operands.GetTop(1).IsFiniteNumber() && !operands.GetTop(1).isMissing && !workspace.isLogged;
    return areNumbers ? &operands.GetTop(1) : nullptr;
}

/// Puts the value in the place of these two.
template <typename Value>
inline bool Evaluation::Replace(Item& left, Value value, Item& result)
{
    workspace.operands.Pop();
    if constexpr (std::is_same_v<Value, double>)
        left.SetOtherNumber(value);
    else
        left.SetValue(value);
    left.position = result.position;
    result.SetValue(value);
    return true;
}

// Operators

bool Evaluation::Apply(const Item& item, Item& result)
{
    if (!item.isOperator) {
        const int position = item.error == &Errors::InvalidUnaryOperator ? 0 : item.position;
        return !item.error || Fail(*item.error, position, result);
    }
    switch (item.row->operation) {
    case Operation::And: return Combine(result, std::logical_and<>());
    case Operation::Or: return Combine(result, std::logical_or<>());
    case Operation::Xor: return Combine(result, std::not_equal_to<>());
    case Operation::Equal: return Compare(result, false, true);
    case Operation::Differ: return Compare(result, true, false);
    case Operation::Greater: return Calculate(result, std::greater<>(), true);
    case Operation::Less: return Calculate(result, std::less<>(), true);
    case Operation::GreaterOrEqual: return Calculate(result, std::greater_equal<>(), true);
    case Operation::LessOrEqual: return Calculate(result, std::less_equal<>(), true);
    case Operation::Add: return Calculate(result, std::plus<>());
    case Operation::Subtract: return Calculate(result, std::minus<>());
    case Operation::Multiply: return Calculate(result, std::multiplies<>());
    case Operation::Raise: return Raise(result);
    case Operation::Divide: return Divide(result);
    case Operation::Negate: return Negate(result);
    case Operation::Join: return Join(result);
    }
    return true;
}

template <typename Operation>
bool Evaluation::Calculate(Item& result, Operation operation, bool leftFirst)
{
    if (Item* const left = FindNumbers())
        return Replace(*left, operation(left[0].number, left[1].number), result);
    return CalculateOthers(result, operation, leftFirst);
}

template <typename Operation>
bool Evaluation::CalculateOthers(Item& result, Operation operation, bool leftFirst)
{
    const Item* const operand = Pop(result);
    double right = 0;
    double left = 0;
    if (!operand || (!leftFirst && !ReadNumber(*operand, right, result)))
        return false;
    return PopNumber(left, result) && (!leftFirst || ReadNumber(*operand, right, result)) &&
        Give(operation(left, right), result);
}

template <typename Operation>
bool Evaluation::Combine(Item& result, Operation operation)
{
    bool right = false;
    bool left = false;
    return PopTruth(right, result) && PopTruth(left, result) && Give(operation(left, right), result);
}

bool Evaluation::Raise(Item& result)
{
    return Calculate(result, [](double base, double exponent) { return std::pow(base, exponent); });
}

bool Evaluation::Divide(Item& result)
{
    if (Item* const left = FindNumbers(); left && left[1].number != 0)
        return Replace(*left, left[0].number / left[1].number, result);
    return DivideOthers(result);
}

bool Evaluation::DivideOthers(Item& result)
{
    const Item* const divisor = Pop(result);
    double right = 0;
    double left = 0;
    if (!divisor || !ReadNumber(*divisor, right, result))
        return false;
    if (right == 0)
        return Fail(Errors::DivideByZero, divisor->position, result);
    return PopNumber(left, result) && Give(left / right, result);
}

bool Evaluation::Negate(Item& result)
{
    double number = 0;
    return PopNumber(number, result) && Give(-number, result);
}

bool Evaluation::Join(Item& result)
{
    NumberBuffer rightBuffer;
    NumberBuffer leftBuffer;
    std::wstring_view rightText;
    std::wstring_view leftText;
    const Item* const right = Pop(result);
    if (!right || !ReadText(*right, true, rightBuffer, rightText, result))
        return false;
    const Item* const left = Pop(result);
    if (!left || !ReadText(*left, true, leftBuffer, leftText, result))
        return false;
    if (leftText.size() + rightText.size() > WString::maxLength)
        return FailAsHost(HostException(HostError::TextTooLong), result);
    return Put(Item::Text(workspace.texts.Join(leftText, rightText), result.position));
}

/// Texts are equal in any case; long ones let an abort in.
static bool AreSameText(std::wstring_view left, std::wstring_view right)
{
    if (left.size() != right.size())
        return false;
    for (; left.size() > Abort::interval; left.remove_prefix(Abort::interval), right.remove_prefix(Abort::interval)) {
        Abort::ThrowIfRequested();
        if (!EqualsIgnoreCase(left.substr(0, Abort::interval), right.substr(0, Abort::interval)))
            return false;
    }
    return EqualsIgnoreCase(left, right);
}

static bool AreEqual(double left, double right)
{
    return std::fabs(left - right) < equalityTolerance_lc;
}

/// Equality of two numbers, or else of two texts in any case. "=" takes only texts as texts, "<>" converts: so 5 <> "x"
/// is true while 5 = "x" is a type mismatch.
bool Evaluation::Compare(Item& result, bool converts, bool wanted)
{
    if (Item* const left = FindNumbers())
        return Replace(*left, AreEqual(left[0].number, left[1].number) == wanted, result);
    return CompareOthers(result, converts, wanted);
}

bool Evaluation::CompareOthers(Item& result, bool converts, bool wanted)
{
    const Item* const right = Pop(result);
    const Item* const left = right ? Pop(result) : nullptr;
    if (!left)
        return false;
    double rightNumber = 0;
    double leftNumber = 0;
    if (!TryCast(*right, rightNumber) || !TryCast(*left, leftNumber))
        return CompareTexts(*left, *right, converts, wanted, result);
    return Give(AreEqual(leftNumber, rightNumber) == wanted, result);
}

bool Evaluation::CompareTexts(const Item& left, const Item& right, bool converts, bool wanted, Item& result)
{
    NumberBuffer rightBuffer;
    NumberBuffer leftBuffer;
    std::wstring_view rightText;
    std::wstring_view leftText;
    return ReadText(right, converts, rightBuffer, rightText, result) &&
        ReadText(left, converts, leftBuffer, leftText, result) &&
        Give(AreSameText(leftText, rightText) == wanted, result);
}
