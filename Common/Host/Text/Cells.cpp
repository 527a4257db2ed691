#include "Text/Cells.h"

#include <clocale>
#include <cwchar>

std::size_t GetCells(wchar_t ch)
{
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    const locale_t former = uselocale(unicode); // of this thread; where there is none it changes nothing
    const int cells = wcwidth(ch);
    uselocale(former);
    return cells < 0 ? 1 : static_cast<std::size_t>(cells);
}

std::size_t CountCells(std::wstring_view text)
{
    std::size_t cells = 0;
    for (const wchar_t ch : text)
        cells += GetCells(ch);
    return cells;
}
