#pragma once

#include "HostApi.h"
#include "Text/WString.h"

#include <vector>

/// A process-wide count of live objects, registered at load so that leaks can be seen.
struct DebugObjectCount
{
    const wchar_t* name;
    int (*read)();
};

/// Registers a counter for the life of the process; made as a static object. `name` must be a literal.
class HOST_API AddToDebugObjectCountVector
{
public:
    AddToDebugObjectCountVector(const wchar_t* name, int (*read)());
};

/// The registered counters, in the order of their registration.
HOST_API const std::vector<DebugObjectCount>& GetDebugObjectCounts();
