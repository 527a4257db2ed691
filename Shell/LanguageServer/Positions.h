#pragma once

#include <cstddef>
#include <string_view>

/// What a client counts the places of a line in.
enum class PositionUnit
{
    Utf16,    // halves of UTF-16
    Character // "utf-32"
};

/// The byte of a line in UTF-8 at which so many units end; the line's end when it has fewer, the start of a character
/// that is cut.
std::size_t FindByte(std::string_view line, std::size_t units, PositionUnit unit);
/// How many units a text in UTF-8 has.
std::size_t CountUnits(std::string_view text, PositionUnit unit);
