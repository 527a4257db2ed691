#include "Text/WStringArray.h"

#include "Text/Abort.h"
#include "Text/CharacterCase.h"

#include <algorithm>

void WStringArray::Sort()
{
    Abort::Watch watch;
    std::sort(items.begin(), items.end(), [&](const WString& left, const WString& right) {
        watch.Step();
        const int order = CompareIgnoreCase(left.View(), right.View());
        return order != 0 ? order < 0 : left < right; // an upper-case letter's number is below its lower-case one's
    });
}
