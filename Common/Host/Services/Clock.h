#pragma once

#include "HostApi.h"

/// Time as the host sees it. Safe under threads. Tests put a clock of their own in place to control waits without
/// waiting.
class HOST_API Clock
{
public:
    virtual ~Clock() = default;
    /// Milliseconds since an arbitrary start; wraps after 49.7 days.
    virtual unsigned int GetTickCount();
    /// Waits, and returns early (within 50 ms) when an abort is requested.
    virtual void Sleep(unsigned int milliseconds);

    static Clock& Get() noexcept;
    /// Puts `clock` in place, null for the real one. It is not owned, and must live until it is replaced and no other
    /// thread is in an operation of it any more.
    static void Replace(Clock* clock) noexcept;
};

/// Milliseconds of the clock in place.
HOST_API unsigned int GetTickCount();
