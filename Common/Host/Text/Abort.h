#pragma once

#include "HostApi.h"

#include <atomic>
#include <cstddef>

/// The request to end what is running (Ctrl-C). One flag for the process.
namespace Abort {
extern HOST_API std::atomic<bool> isRequested_gb; // for what stands here alone

/// May be called from a signal handler.
inline void Request() noexcept
{
    isRequested_gb.store(true, std::memory_order_relaxed);
}

inline bool IsRequested() noexcept
{
    return isRequested_gb.load(std::memory_order_relaxed);
}

inline void Clear() noexcept
{
    isRequested_gb.store(false, std::memory_order_relaxed);
}

/// Throws HostException(HostError::Aborted).
[[noreturn]] HOST_API void Throw();
/// Throws that when an abort was requested. Inline, for it stands in every loop.
inline void ThrowIfRequested()
{
    if (IsRequested())
        Throw();
}

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
