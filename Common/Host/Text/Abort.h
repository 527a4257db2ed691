#pragma once

#include "HostApi.h"

#include <cstddef>

/// The request to end what is running (Ctrl-C). One flag for the process.
namespace Abort {
/// May be called from a signal handler.
HOST_API void Request() noexcept;
HOST_API bool IsRequested() noexcept;
HOST_API void Clear() noexcept;
/// Throws HostException(HostError::Aborted) when an abort was requested.
HOST_API void ThrowIfRequested();

/// How many characters or bytes a loop may handle between two looks at the request. Far less than 50 ms on the slowest
/// processor; and so many that what tidies up and reports after an abort, whose texts are short, is not aborted too.
inline constexpr std::size_t interval = 0x10000;

/// Counts the steps of a loop over user data and looks at the request once in an interval.
class Watch
{
public:
    void Step()
    {
        if (--left == 0) {
            left = interval;
            ThrowIfRequested();
        }
    }

private:
    std::size_t left = interval;
};
} // namespace Abort
