#pragma once

#include "HostApi.h"

#include <string_view>

/// Numbers as text in the portable locale, whatever the locale of the process.

/// Converts the longest prefix of `text` that is a number, as wcstod does in the portable locale (hexadecimal forms
/// included), and puts the place behind it into `end`; `end` is `text` when there is no number. A number too large
/// for a double gives infinity.
HOST_API double ReadDouble(const wchar_t* text, const wchar_t** end) noexcept;

/// The whole text as an unsigned number of at most `max`: one or more digits of `base` (up to 16, letters of either
/// case) and nothing else. `value` is written on success only.
HOST_API bool TryReadUnsigned(
    std::wstring_view text, unsigned int base, unsigned int max, unsigned int& value) noexcept;
