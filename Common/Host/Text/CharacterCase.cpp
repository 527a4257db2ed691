#include "Text/CharacterCase.h"

#include <algorithm>
#include <compare>
#include <locale.h>
#include <wctype.h>

/// A locale of our own, made once and kept to the end: the process's may be any, and may change at any time. Where no
/// UTF-8 locale is installed only ASCII letters have two cases.
static locale_t GetCaseLocale() noexcept
{
    static const locale_t locale = [] {
        for (const char* name : {"C.UTF-8", "en_US.UTF-8"}) {
            if (locale_t made = newlocale(LC_CTYPE_MASK, name, nullptr))
                return made;
        }
        return newlocale(LC_CTYPE_MASK, "C", nullptr);
    }();
    return locale;
}

wchar_t ToUpperOther(wchar_t ch) noexcept
{
    return static_cast<wchar_t>(towupper_l(static_cast<wint_t>(ch), GetCaseLocale()));
}

wchar_t ToLowerOther(wchar_t ch) noexcept
{
    return static_cast<wchar_t>(towlower_l(static_cast<wint_t>(ch), GetCaseLocale()));
}

bool IsOtherWhiteSpace(wchar_t ch) noexcept
{
    return iswspace_l(static_cast<wint_t>(ch), GetCaseLocale()) != 0;
}

int CompareIgnoreCase(std::wstring_view left, std::wstring_view right) noexcept
{
    const auto lower = [](wchar_t l, wchar_t r) { return ToLower(l) <=> ToLower(r); };
    const auto order =
        std::lexicographical_compare_three_way(left.begin(), left.end(), right.begin(), right.end(), lower);
    return std::is_lt(order) ? -1 : std::is_gt(order) ? 1 : 0;
}
