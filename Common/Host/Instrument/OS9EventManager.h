#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

class OS9EventSegment;

/// A reference to a named 32-bit value that all processes of the user share.
class HOST_API OS9EventData
{
public:
    /// 0 when somebody has cut off the file that the value stood in.
    int Read() const noexcept;
    void Write(int value) noexcept;
    /// Gives the reference back; the object must not be used afterwards.
    void ReleaseReference() noexcept;

private:
    friend class OS9EventManager;
    OS9EventData(std::shared_ptr<OS9EventSegment> segment, std::size_t index);
    ~OS9EventData() = default;

    const std::shared_ptr<OS9EventSegment> segment;
    std::atomic<std::int32_t>& value;
    std::atomic<std::int32_t>& references; // of this process
};

/// The events of the user on this machine, in POSIX shared memory: a table of 256, gone with a restart of the machine.
/// A deleted event is found no more, but serves those who hold references until the last of them is given back. Safe
/// under threads and processes: a process that dies holding the lock does not block the others, and the references
/// that it holds go with it.
///
/// The environment variable LABSH_EVENTS names another table, to keep benches apart. All operations throw
/// HostException: FileError when the table cannot be made or used, and when another process keeps it locked, after 2 s;
/// Aborted when an abort is requested meanwhile.
class HOST_API OS9EventManager
{
public:
    static constexpr unsigned int capacity = 256;
    static constexpr unsigned int maxNameLength = 63;

    /// A counted reference to the event, or null when there is none of that name (names compare exactly).
    static OS9EventData* GetOS9Event(const WString& name);
    /// Makes an event; false when the name is taken, empty or too long, or there is no room.
    static bool TryCreate(const WString& name, int value);
    static bool TryDelete(const WString& name);
    /// References held over all processes, -1 when there is no such event.
    static int GetReferenceCount(const WString& name);
    /// All names, sorted.
    static void GetNames(WStringArray& names);
};
