#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

struct OS9EventSlot;

/// A reference to a named 32-bit value that all processes of the user share.
class HOST_API OS9EventData
{
public:
    int Read() const noexcept;
    void Write(int value) noexcept;
    /// Gives the reference back; the object must not be used afterwards.
    void ReleaseReference() noexcept;

private:
    friend class OS9EventManager;
    explicit OS9EventData(OS9EventSlot& slot) noexcept : slot(slot) {}
    ~OS9EventData() = default;

    OS9EventSlot& slot;
};

/// The events of the user on this machine, in POSIX shared memory: a table of 256, gone with a restart of the machine.
/// Each keeps a count of the references to it over all processes; a deleted event is found no more, but serves those
/// who hold references until the last of them is given back. Safe under threads and processes: a process that dies
/// holding the lock does not block the others. References that a process still holds when it dies stay counted.
///
/// The environment variable LABSH_EVENTS names another table, to keep benches apart.
class HOST_API OS9EventManager
{
public:
    static constexpr unsigned int maxNameLength = 63;

    /// A counted reference to the event, or null when there is none of that name (names compare exactly).
    static OS9EventData* GetOS9Event(const WString& name);
    /// Makes an event; false when the name is taken, empty or too long, or there is no room or no shared memory.
    static bool TryCreate(const WString& name, int value);
    static bool TryDelete(const WString& name);
    /// References held over all processes, -1 when there is no such event.
    static int GetReferenceCount(const WString& name);
    /// All names, sorted.
    static void GetNames(WStringArray& names);
};
