#pragma once

#include "HostApi.h"

#include <algorithm>
#include <string_view>

/// Case mapping of single characters, one to one, as UTF-8 locales have it, whatever the locale of the process.
HOST_API wchar_t ToUpperOther(wchar_t ch) noexcept;
HOST_API wchar_t ToLowerOther(wchar_t ch) noexcept;
HOST_API bool IsOtherWhiteSpace(wchar_t ch) noexcept;

inline wchar_t ToUpper(wchar_t ch) noexcept
{
    if (static_cast<unsigned>(ch) < 0x80)
        return ch >= L'a' && ch <= L'z' ? static_cast<wchar_t>(ch - (L'a' - L'A')) : ch;
    return ToUpperOther(ch);
}

inline wchar_t ToLower(wchar_t ch) noexcept
{
    if (static_cast<unsigned>(ch) < 0x80)
        return ch >= L'A' && ch <= L'Z' ? static_cast<wchar_t>(ch + (L'a' - L'A')) : ch;
    return ToLowerOther(ch);
}

/// True for the characters that a UTF-8 locale counts as white space.
inline bool IsWhiteSpace(wchar_t ch) noexcept
{
    if (static_cast<unsigned>(ch) < 0x80)
        return ch == L' ' || (ch >= L'\t' && ch <= L'\r');
    return IsOtherWhiteSpace(ch);
}

constexpr bool IsDecimalDigit(wchar_t ch) noexcept
{
    return ch >= L'0' && ch <= L'9';
}

/// True for what the names of variables and functions consist of.
constexpr bool IsNameCharacter(wchar_t ch) noexcept
{
    return (ch >= L'a' && ch <= L'z') || (ch >= L'A' && ch <= L'Z') || IsDecimalDigit(ch) || ch == L'_' || ch == L'.';
}

/// Below, equal to or above 0 as `left` sorts before, with or after `right`, both in lower case.
HOST_API int CompareIgnoreCase(std::wstring_view left, std::wstring_view right) noexcept;

/// True for texts that differ in case only. Inline, because most texts that are compared differ in length.
inline bool EqualsIgnoreCase(std::wstring_view left, std::wstring_view right) noexcept
{
    const auto same = [](wchar_t l, wchar_t r) { return l == r || ToLower(l) == ToLower(r); };
    return left.size() == right.size() && std::equal(left.begin(), left.end(), right.begin(), same);
}
