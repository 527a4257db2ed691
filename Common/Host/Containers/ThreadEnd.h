#pragma once

#include "HostApi.h"

/// Has the function called when the calling thread ends, after the destructors of the thread's objects, and the last
/// one first; never in a thread that ends with the process. Takes no memory, where the language's own means end the
/// process when there is none. False when it cannot be done. The library of the function must not be unloaded before.
HOST_API bool TryRunAtThreadEnd(void (*function)()) noexcept;
