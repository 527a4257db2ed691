#include "Text/Abort.h"

#include "Text/HostError.h"

#include <atomic>

static std::atomic<bool> requested_lc{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

void Abort::Request() noexcept
{
    requested_lc.store(true, std::memory_order_relaxed);
}

bool Abort::IsRequested() noexcept
{
    return requested_lc.load(std::memory_order_relaxed);
}

void Abort::Clear() noexcept
{
    requested_lc.store(false, std::memory_order_relaxed);
}

void Abort::ThrowIfRequested()
{
    if (IsRequested())
        throw HostException(HostError::Aborted);
}
