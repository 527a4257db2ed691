#pragma once

#include "HostApi.h"

#include <string_view>

/// A standard stream of the process, whose reader may be slow, stuck or gone. For one thread.
class HOST_API StandardStream
{
public:
    explicit constexpr StandardStream(int descriptor) noexcept : descriptor(descriptor) {}

    /// Writes all bytes; yields 0, or the errno of what failed. Waits for the reader as long as it takes; but once an
    /// abort is requested, a reader that takes nothing for a second is given up with ETIMEDOUT, and not waited for
    /// again before it takes something.
    int Write(std::string_view bytes) noexcept;

private:
    static constexpr int maxPatience = 1000; // milliseconds

    const int descriptor;
    int patience = maxPatience;

    bool TryWaitForReader() noexcept;
};
