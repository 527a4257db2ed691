#pragma once

#include "EEToken.h"

#include <cstddef>
#include <string_view>

/// What an operator does with its operands.
enum class Operation
{
    And,
    Or,
    Xor,
    Equal,
    Greater,
    Less,
    Differ,
    GreaterOrEqual,
    LessOrEqual,
    Add,
    Subtract,
    Join,
    Multiply,
    Divide,
    Raise,
    Negate
};

/// One operator of the language.
struct OperatorRow
{
    wchar_t name[5];  // up to four characters; an empty name ends the table
    int operandCount; // 1 or 2
    int priority;     // 1 binds least
    Operation operation;

    constexpr std::wstring_view GetName() const noexcept { return name; }
    /// What its token is in postfix.
    constexpr TokenType GetType() const noexcept { return static_cast<TokenType>(TT_UNARYOP + operandCount - 1); }
    /// True for an operator of letters.
    constexpr bool IsKeyword() const noexcept { return name[0] >= L'a' && name[0] <= L'z'; }
};

/// The internal name of the unary minus, which the converter tells apart from the binary one.
constexpr wchar_t unaryMinus = L'\u00B1';

/// The priority of everything that is no operator, one above the highest.
constexpr int noOperatorPriority = 7;

/// All operators in the order in which the help lists them.
inline constexpr OperatorRow operatorTable_gb[] = {
    {L"and", 2, 1, Operation::And},
    {L"or", 2, 1, Operation::Or},
    {L"xor", 2, 1, Operation::Xor},
    {L"=", 2, 2, Operation::Equal},
    {L">", 2, 2, Operation::Greater},
    {L"<", 2, 2, Operation::Less},
    {L"<>", 2, 2, Operation::Differ},
    {L">=", 2, 2, Operation::GreaterOrEqual},
    {L"<=", 2, 2, Operation::LessOrEqual},
    {L"+", 2, 3, Operation::Add},
    {L"-", 2, 3, Operation::Subtract},
    {L"&", 2, 3, Operation::Join},
    {L"*", 2, 4, Operation::Multiply},
    {L"/", 2, 4, Operation::Divide},
    {L"^", 2, 5, Operation::Raise},
    {{unaryMinus}, 1, 6, Operation::Negate},
    {},
};

/// The row of an operation, whose place in the table is its number.
constexpr const OperatorRow& RowOf(Operation operation) noexcept
{
    return operatorTable_gb[static_cast<std::size_t>(operation)];
}

static_assert(RowOf(Operation::Negate).GetType() == TT_UNARYOP && RowOf(Operation::Add).GetType() == TT_BINARYOP);
static_assert([] {
    for (std::size_t i = 0; operatorTable_gb[i].name[0]; ++i)
        if (operatorTable_gb[i].operation != static_cast<Operation>(i))
            return false;
    return true;
}());

/// The row of the operator of that name (any case), or null.
const OperatorRow* FindOperator(std::wstring_view name) noexcept;
