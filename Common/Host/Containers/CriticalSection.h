#pragma once

#include <mutex>

/// A lock that its owner may take again.
class CriticalSection
{
public:
    CriticalSection() = default;
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;

    void Enter() { mutex.lock(); }
    void Leave() { mutex.unlock(); }

private:
    std::recursive_mutex mutex;
};

/// Holds a critical section for the length of a scope.
class SyncLock
{
public:
    explicit SyncLock(CriticalSection& section) : section(section) { section.Enter(); }
    ~SyncLock() { section.Leave(); }
    SyncLock(const SyncLock&) = delete;
    SyncLock& operator=(const SyncLock&) = delete;

private:
    CriticalSection& section;
};
