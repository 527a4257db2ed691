#pragma once

#include <cstdint>
#include <string>

/// A script made by chance, the same for the same seed: in turn one that runs clean and gives no cause for a warning,
/// one like it with a command that fails, and one with whatever can be typed. Every second round has nested commands.
/// It reads the variable "target", which is a number.
struct RandomScript
{
    enum class Kind
    {
        Clean,
        Failing,
        Wild
    };

    explicit RandomScript(std::uint32_t seed);

    /// What it may run as "part.txt", beside it; sets the variable "fromPart".
    static constexpr const char* part = "# A part\nSet -i fromPart=7\nEcho part\n";

    const Kind kind;
    const bool isNested;
    std::string text;
};
