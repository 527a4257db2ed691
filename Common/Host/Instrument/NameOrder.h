#pragma once

#include "Text/CharacterCase.h"
#include "Text/WString.h"

/// Orders names without regard to case, for maps whose names compare in any case.
struct NameOrder
{
    bool operator()(const WString& left, const WString& right) const noexcept
    {
        return CompareIgnoreCase(left.View(), right.View()) < 0;
    }
};
