#pragma once

#include "HostApi.h"

#include <cstddef>
#include <string_view>

/// How many cells a terminal gives a character, in whatever locale the process is. One that it does not know takes one.
HOST_API std::size_t GetCells(wchar_t ch);
HOST_API std::size_t CountCells(std::wstring_view text);
