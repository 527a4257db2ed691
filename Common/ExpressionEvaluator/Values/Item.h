#pragma once

#include "EEToken.h"
#include "EvaluatorErrors.h"
#include "NumberFormat.h"
#include "OperatorTable.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <type_traits>

class EEFunction;

/// What a token is inside the engine: made, ordered and consumed by value. It owns nothing: its text is a view, of the
/// expression or of what its maker keeps, and behind it stands a character that no number goes on with.
struct Item
{
    /// What counts follows from type and data type.
    union
    {
        double number = 0;           // DT_NUM
        bool truth;                  // DT_BOOL
        unsigned int errorCode;      // DT_ERR
        const OperatorRow* row;      // operators; of "+", "-" and "&" that of the binary one
        const EvaluatorError* error; // of what ought to be an operator and is none; null to pass it over
        EEFunction* function;        // TT_FUNCOP; null for an unknown name
    };
    const wchar_t* text = nullptr;
    unsigned int length = 0;
    int position = 0;
    int dataType = DT_NONE; // of a function the number of its parameters
    short type = TT_NONE;
    bool isOperator = false; // one of the table
    bool isMissing = false;  // an error that stands for a variable which could not be resolved

    static constexpr Item Operand(int dataType, int position) noexcept
    {
        Item item;
        item.position = position;
        item.Set(TT_OPERAND, dataType);
        return item;
    }
    static constexpr Item Number(double value, int position) noexcept
    {
        Item item;
        item.position = position;
        item.SetValue(value);
        return item;
    }
    static constexpr Item Truth(bool value, int position) noexcept
    {
        Item item;
        item.position = position;
        item.SetValue(value);
        return item;
    }
    static constexpr Item Text(std::wstring_view text, int position) noexcept
    {
        Item item = Operand(DT_STR, position);
        item.SetText(text);
        return item;
    }
    static constexpr Item Error(unsigned int code, std::wstring_view message, int position) noexcept
    {
        Item item = Operand(DT_ERR, position);
        item.errorCode = code;
        item.SetText(message);
        return item;
    }
    static constexpr Item Error(const EvaluatorError& error, int position) noexcept
    {
        return Error(error.number, error.message, position);
    }
    static constexpr Item Missing(std::wstring_view name, int position) noexcept
    {
        Item item = Error(0, name, position);
        item.isMissing = true;
        return item;
    }
    /// A token that is no operand.
    static constexpr Item Mark(int type, std::wstring_view text, int position) noexcept
    {
        Item item;
        item.position = position;
        item.SetMark(type, text);
        return item;
    }

    static constexpr Item Operator(const OperatorRow& row, int position) noexcept
    {
        Item item;
        item.position = position;
        item.SetOperator(row.GetType(), row);
        return item;
    }

    // Setters set all but the position, field by field in place: the compiler makes much more of assigning a new item.

    constexpr void SetValue(double value, std::wstring_view literal = {}) noexcept
    {
        number = value;
        SetText(literal);
        Set(TT_OPERAND, DT_NUM);
    }
    /// Of a number: what it is stays.
    constexpr void SetOtherNumber(double value) noexcept
    {
        number = value;
        length = 0;
    }
    constexpr void SetValue(bool value) noexcept
    {
        truth = value;
        SetText({});
        Set(TT_OPERAND, DT_BOOL);
    }
    constexpr void SetMark(int newType, std::wstring_view newText) noexcept
    {
        SetText(newText);
        Set(newType, DT_NONE);
    }
    /// An operator has the text of its row unless it is given another one.
    constexpr void SetOperator(int newType, const OperatorRow& newRow) noexcept
    {
        SetMark(newType, {});
        row = &newRow;
        isOperator = true;
    }
    constexpr std::wstring_view GetText() const noexcept
    {
        return isOperator && length == 0 ? row->GetName() : std::wstring_view(text, length);
    }
    constexpr void SetText(std::wstring_view newText) noexcept
    {
        text = newText.data();
        length = static_cast<unsigned int>(newText.size());
    }
    /// An operand that is neither "#NA" nor an error.
    bool IsValued() const noexcept { return type == TT_OPERAND && (dataType & ~DT_ERR) != 0; }
    /// A number that stands for itself.
    bool IsFiniteNumber() const noexcept { return dataType == DT_NUM && type == TT_OPERAND && std::isfinite(number); }

private:
    constexpr void Set(int newType, int newDataType) noexcept
    {
        dataType = newDataType;
        type = static_cast<short>(newType);
        isOperator = false;
        isMissing = false;
    }
};
static_assert(std::is_trivially_copyable_v<Item>);

inline void EEToken::SetItemFrom(Item& item) const noexcept
{
    using Type = std::numeric_limits<decltype(item.type)>;
    item.SetMark(std::clamp<int>(type, Type::min(), Type::max()), text.View()); // anybody may have set it
    item.position = position;
    item.dataType = dataType;
    item.isMissing = missingVariable;
    if (type == TT_OPERAND && dataType == DT_NUM)
        item.number = number;
    else if (type == TT_OPERAND && dataType == DT_BOOL)
        item.truth = boolValue != 0;
    else
        item.errorCode = errorCode;
}

inline Item EEToken::AsItem() const noexcept
{
    Item item;
    SetItemFrom(item);
    return item;
}

/// Why an operand cannot be taken as asked; without an error, because it is no value: its own error is the reason.
struct Refusal
{
    const EvaluatorError* error = nullptr;
    int position = -1; // -1 for none
};

// The conversions of the language. Those that tolerate return false where a value does not convert; the others, which
// raise, say why.

bool TryCast(const Item& operand, double& value) noexcept;
bool TryCast(const Item& operand, bool& value) noexcept;

bool TakeOtherNumber(const Item& operand, double& value, Refusal& refusal) noexcept;

/// A number, or a text that reads as one.
inline bool TakeNumber(const Item& operand, double& value, Refusal& refusal) noexcept
{
    if (!operand.IsFiniteNumber())
        return TakeOtherNumber(operand, value, refusal);
    value = operand.number;
    return true;
}
bool RefuseTruth(const Item& operand, Refusal& refusal) noexcept;

/// A boolean.
inline bool TakeTruth(const Item& operand, bool& value, Refusal& refusal) noexcept
{
    if (operand.dataType != DT_BOOL || operand.type != TT_OPERAND)
        return RefuseTruth(operand, refusal);
    value = operand.truth;
    return true;
}

/// Room for the text of a number.
struct NumberBuffer
{
    wchar_t text[numberTextSize];
};
/// A text, with `converts` also that of a number or boolean, which may stand in the buffer.
bool TakeText(const Item& operand, bool converts, NumberBuffer& buffer, std::wstring_view& text, Refusal& refusal);
/// The text of a number, boolean or text.
std::wstring_view GetValueText(const Item& value, NumberBuffer& buffer);
