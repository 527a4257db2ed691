#include "Colours.h"

#include "Screen.h"

#include <cstdlib>

static constexpr const char* sequences_lc[] = {"", "\x1b[31m", "\x1b[33m", "\x1b[2m"};

bool HasColours(int descriptor)
{
    const char* const refusal = std::getenv("NO_COLOR");
    return Screen::CanDrawOver(descriptor) && (!refusal || *refusal == '\0');
}

std::string Paint(std::string_view text, Colour colour, int descriptor)
{
    if (colour == Colour::None || text.empty() || !HasColours(descriptor))
        return std::string(text);
    return sequences_lc[static_cast<int>(colour)] + std::string(text) + "\x1b[0m";
}
