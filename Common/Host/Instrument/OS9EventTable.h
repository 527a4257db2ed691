#pragma once

#include "Services/FileDescriptor.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

#include <pthread.h>

/// One event of the table in shared memory. All but the value is read and written under the table's lock.
struct OS9EventSlot
{
    static constexpr unsigned int nameCapacity = 64;

    std::atomic<std::int32_t> value;
    std::atomic<std::uint32_t> isNamed; // else it is no longer found, or free when nobody refers to it
    wchar_t name[nameCapacity];         // ends with 0
};
static_assert(std::atomic<std::int32_t>::is_always_lock_free, "a lock of one process says nothing to another");

/// What the processes share. A process may die at any instruction: a slot is named last, when the rest is in place, and
/// the references that a process holds are counted apart, so that they go with it.
struct OS9EventTable
{
    static constexpr unsigned int capacity = 256;
    static constexpr unsigned int processCapacity = 128; // that refer to events at once

    using References = std::atomic<std::int32_t>[capacity]; // of one process, to each event

    std::uint32_t layout; // 0 until all the rest is in place
    pthread_mutex_t mutex;
    OS9EventSlot slots[capacity];
    References references[processCapacity];
};

/// The table in the memory of this process.
class OS9EventSegment
{
public:
    /// The table of this process's user, made by the first process that asks for it, and again after somebody has
    /// removed it. Throws HostException: FileError with its file, the reason and what can be done when it cannot be
    /// made or is none; Aborted when an abort is requested while waiting for another process that makes it.
    static std::shared_ptr<OS9EventSegment> Get();

    OS9EventSegment();
    ~OS9EventSegment();
    OS9EventSegment(const OS9EventSegment&) = delete;
    OS9EventSegment& operator=(const OS9EventSegment&) = delete;

    OS9EventTable& GetTable() const noexcept { return *table; }
    /// False when somebody has cut the file off: to touch the memory behind its end is a signal.
    bool IsWhole() const noexcept;
    /// Throws HostException: FileError when the table stays locked for 2 s, Aborted.
    void Lock();
    void Unlock() noexcept;
    /// Frees the row of this process, unless it still refers to events or the table is locked.
    void TryGiveRowBack() noexcept;

    // Under the lock.

    /// The counts of this process, which it may change without the lock too. Throws HostException(FileError) when too
    /// many processes have such.
    OS9EventTable::References& GetOwnReferences();
    /// Sets the counts of processes that have ended to 0.
    void ForgetEndedProcesses() noexcept;

private:
    const std::string file;
    const pid_t process;
    const FileDescriptor descriptor;
    OS9EventTable* table;
    unsigned int ownRow = OS9EventTable::processCapacity; // none yet

    bool IsCurrent() const noexcept;
    bool TryLock() noexcept;
    bool TryLockRow(unsigned int row, short type) noexcept;
    void ClearRow(unsigned int row) noexcept;
};

/// Holds the table's lock for the length of a scope. Throws what OS9EventSegment::Get and Lock do.
class OS9EventTableLock
{
public:
    OS9EventTableLock() : segment(OS9EventSegment::Get()) { segment->Lock(); }
    ~OS9EventTableLock() { segment->Unlock(); }
    OS9EventTableLock(const OS9EventTableLock&) = delete;
    OS9EventTableLock& operator=(const OS9EventTableLock&) = delete;

    const std::shared_ptr<OS9EventSegment> segment;
};
