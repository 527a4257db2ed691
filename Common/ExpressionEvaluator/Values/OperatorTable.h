#pragma once

#include <string_view>

/// One operator of the language.
struct OperatorRow
{
    wchar_t name[5];  // up to four characters; an empty name ends the table
    int operandCount; // 1 or 2
    int priority;     // 1 binds least
};

/// The internal name of the unary minus, which the converter tells apart from the binary one.
constexpr wchar_t unaryMinus = L'\u00B1';

/// The priority of everything that is no operator, one above the highest.
constexpr int noOperatorPriority = 7;

/// All operators in the order in which the help lists them.
inline constexpr OperatorRow operatorTable_gb[] = {
    {L"and", 2, 1},
    {L"or", 2, 1},
    {L"xor", 2, 1},
    {L"=", 2, 2},
    {L">", 2, 2},
    {L"<", 2, 2},
    {L"<>", 2, 2},
    {L">=", 2, 2},
    {L"<=", 2, 2},
    {L"+", 2, 3},
    {L"-", 2, 3},
    {L"&", 2, 3},
    {L"*", 2, 4},
    {L"/", 2, 4},
    {L"^", 2, 5},
    {{unaryMinus}, 1, 6},
    {},
};

/// The priority of the operator of that name (any case), or noOperatorPriority.
int FindPriority(std::wstring_view name) noexcept;
