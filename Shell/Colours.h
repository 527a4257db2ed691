#pragma once

#include <string>
#include <string_view>

enum class Colour
{
    None,
    Failure,
    Warning,
    Aside // what explains
};

/// Whether what is written there may be coloured: a terminal, unless the environment has NO_COLOR or says that the
/// terminal is a dumb one.
bool HasColours(int descriptor);

/// The text in a colour, for a descriptor that has them; else as it stands.
std::string Paint(std::string_view text, Colour colour, int descriptor);
