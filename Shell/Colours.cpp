#include "Colours.h"

#include <cstdlib>

#include <unistd.h>

static constexpr const char* sequences_lc[] = {"", "\x1b[31m", "\x1b[33m", "\x1b[2m"};

static std::string_view GetVariable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

bool HasColours(int descriptor)
{
    const std::string_view kind = GetVariable("TERM");
    return isatty(descriptor) == 1 && GetVariable("NO_COLOR").empty() && !kind.empty() && kind != "dumb";
}

std::string Paint(std::string_view text, Colour colour, int descriptor)
{
    if (colour == Colour::None || text.empty() || !HasColours(descriptor))
        return std::string(text);
    return sequences_lc[static_cast<int>(colour)] + std::string(text) + "\x1b[0m";
}
