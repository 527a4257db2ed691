#include "Text/WStringArray.h"

#include "Text/CharacterCase.h"

#include <algorithm>

void WStringArray::Sort()
{
    std::sort(items.begin(), items.end(), [](const WString& left, const WString& right) {
        const int order = CompareIgnoreCase(left.View(), right.View());
        return order != 0 ? order < 0 : left < right; // an upper-case letter's number is below its lower-case one's
    });
}
