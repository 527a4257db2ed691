#pragma once

#include <atomic>
#include <cstdint>

#include <pthread.h>

/// One event of the table in shared memory. All but the value is read and written under the table's lock.
struct OS9EventSlot
{
    static constexpr unsigned int nameCapacity = 64;

    enum State : std::uint32_t
    {
        Free,
        Named,
        Deleted // no longer found by its name, but still referred to
    };

    std::atomic<std::int32_t> value;
    std::atomic<State> state;
    std::int32_t references;
    wchar_t name[nameCapacity]; // ends with 0
};
static_assert(std::atomic<std::int32_t>::is_always_lock_free, "a lock of one process says nothing to another");

/// What the processes share. A process may die at any instruction: a slot changes its state last, when the rest is in
/// place.
struct OS9EventTable
{
    static constexpr unsigned int capacity = 256;

    std::uint32_t layout; // 0 until all the rest is in place
    pthread_mutex_t mutex;
    OS9EventSlot slots[capacity];

    /// The table of this process's user, made by the first process that asks for it; null while there is no shared
    /// memory, and then looked for again the next time.
    static OS9EventTable* Get();
};

/// Holds the table's lock for the length of a scope.
class OS9EventTableLock
{
public:
    explicit OS9EventTableLock(OS9EventTable& table) noexcept;
    ~OS9EventTableLock();
    OS9EventTableLock(const OS9EventTableLock&) = delete;
    OS9EventTableLock& operator=(const OS9EventTableLock&) = delete;

private:
    OS9EventTable& table;
};
