#include "OperatorTable.h"

#include "Text/CharacterCase.h"

#include <iterator>

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
