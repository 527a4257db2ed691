#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the program, so that the fuzzer keeps the input, unless what must hold does.
inline void Require(bool holds, const char* claim)
{
    if (holds)
        return;
    std::fprintf(stderr, "This does not hold: %s\n", claim);
    std::abort();
}
