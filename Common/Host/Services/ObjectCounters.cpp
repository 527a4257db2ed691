#include "Services/ObjectCounters.h"

/// Made on first use: counters register while libraries are being loaded, in any order.
static std::vector<DebugObjectCount>& Counters()
{
    static std::vector<DebugObjectCount> counters;
    return counters;
}

AddToDebugObjectCountVector::AddToDebugObjectCountVector(const wchar_t* name, int (*read)())
{
    Counters().push_back({name, read});
}

const std::vector<DebugObjectCount>& GetDebugObjectCounts()
{
    return Counters();
}
