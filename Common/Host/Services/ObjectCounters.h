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

/// Registers a counter for the life of the process; made as a static object, since the list is not locked: it is filled
/// while libraries are loaded and only read after that. `name` must be a literal; any thread may call `read`.
class HOST_API AddToDebugObjectCountVector
{
public:
    AddToDebugObjectCountVector(const wchar_t* name, int (*read)());
};

/// The registered counters, in the order of their registration.
HOST_API const std::vector<DebugObjectCount>& GetDebugObjectCounts();
