#include "OperatorTable.h"

#include "Text/CharacterCase.h"

#include <iterator>

const OperatorRow operatorTable_gb[] = {
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

int FindPriority(std::wstring_view name) noexcept
{
    if (name.empty() || name.size() >= std::size(OperatorRow().name))
        return noOperatorPriority;
    const wchar_t first = ToLower(name[0]);
    for (const OperatorRow* row = operatorTable_gb; row->name[0]; ++row) {
        if (row->name[0] == first && EqualsIgnoreCase(row->name, name))
            return row->priority;
    }
    return noOperatorPriority;
}
