#include "Text/Abort.h"

#include "Text/HostError.h"

std::atomic<bool> Abort::isRequested_gb{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

void Abort::Throw()
{
    throw HostException(HostError::Aborted);
}
