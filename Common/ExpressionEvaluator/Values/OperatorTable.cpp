#include "OperatorTable.h"

#include "Text/CharacterCase.h"

const OperatorRow* FindOperator(std::wstring_view name) noexcept
{
    if (name.empty())
        return nullptr;
    for (const OperatorRow* row = operatorTable_gb; row->name[0]; ++row) {
        if (EqualsIgnoreCase(row->name, name))
            return row;
    }
    return nullptr;
}
