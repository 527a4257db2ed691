#pragma once

#include "HostApi.h"

/// The stack of the calling thread.
namespace StackRoom {
/// True when less is left than a command may need besides those that it runs, or a function besides what is evaluated
/// around it: what would take a further level then fails instead of ending the process. Always false where the size of
/// the stack cannot be known: on one that the thread was switched to, and where the system does not tell.
HOST_API bool IsShort() noexcept;
} // namespace StackRoom
