#include "LanguageServer/Positions.h"

#include <algorithm>

/// A character of four bytes takes two halves.
static std::size_t CountUnits(char first, PositionUnit unit)
{
    return unit == PositionUnit::Utf16 && static_cast<unsigned char>(first) >= 0xF0 ? 2 : 1;
}

static bool ContinuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

std::size_t FindByte(std::string_view line, std::size_t units, PositionUnit unit)
{
    std::size_t count = 0;
    for (auto byte = line.begin(); byte != line.end();) {
        count += CountUnits(*byte, unit);
        if (count > units)
            return static_cast<std::size_t>(byte - line.begin());
        byte = std::find_if_not(byte + 1, line.end(), ContinuesCharacter);
    }
    return line.size();
}

std::size_t CountUnits(std::string_view text, PositionUnit unit)
{
    std::size_t count = 0;
    for (const char byte : text)
        count += ContinuesCharacter(byte) ? 0 : CountUnits(byte, unit);
    return count;
}
