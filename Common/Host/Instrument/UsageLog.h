#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <memory>
#include <string>

/// Named counters for several processes at once, in an SQLite file with its journal beside it while it is open. Names
/// compare in any case. Safe under threads, once it is open: Open comes before other threads use it. Without an open
/// file all reads find nothing and increments are dropped: counting never fails a command. An operation waits for other
/// processes that write, 1 s at most (Open, and one that finds counts gathered, 2 s) and no longer than until an abort
/// is requested, and then fails.
///
/// Every change is a transaction of its own that survives the death of the process at any moment, and no change is lost
/// to another process. It is flushed to the disk not at once but at the end, so that changes in a loop stay cheap.
///
/// What is merely counted, a little at each command, is gathered in memory and written in one transaction: at most ten
/// times a second, before any other operation of this object, and at the end. It is never flushed to the disk: a power
/// failure in the moment when it is written may damage the file.
class HOST_API UsageLog
{
public:
    UsageLog();
    /// Writes what is gathered, and flushes what was changed otherwise to the disk.
    ~UsageLog();
    UsageLog(const UsageLog&) = delete;
    UsageLog& operator=(const UsageLog&) = delete;

    /// Opens or creates the file in place of the one that was open. One that this process may not change, or cannot for
    /// want of room, is used for reading alone. One that is damaged or empty is kept aside, as "<path>.damaged1" or so,
    /// and a new one is begun. A counter in it that some other program has spoilt is left out and stays as it is.
    /// Yields a report of such things in one line, else an empty text. Throws HostException(FileError) with name and
    /// reason, and then no file is open.
    ///
    /// A file that takes its place while it is open is opened instead by the next operation.
    WString Open(const std::string& path);
    /// Such a report of a file that was opened instead, once; empty when there is no new one.
    WString TakeReport();
    /// The counter, saturated to the signed 32-bit range.
    bool TryGetUsageValue(const wchar_t* name, int& value) const;
    /// Adds to the counter, which starts at 0; false when the file cannot be written. A sum beyond 64 bits leaves the
    /// counter as it is.
    bool Increment(const wchar_t* name, long long by = 1);
    bool Set(const wchar_t* name, long long value);
    /// False when there is no such counter, or when the file cannot be written.
    bool TryDelete(const wchar_t* name);
    /// Why the last operation has failed.
    WString GetFault() const;
    /// All names, sorted.
    void GetNames(WStringArray& names) const;

    /// Adds to the counter as Increment does, but gathers first.
    void Count(const WString& name, unsigned int by = 1);
    /// Writes what is gathered: to be called before a wait. What cannot be written stays gathered.
    void WriteCounts() noexcept;
    /// Writes it when its time has come: to be called in loops that do not count.
    void WriteCountsIfDue() noexcept;

private:
    class Counters;
    std::unique_ptr<Counters> counters;

    template <typename Change>
    bool TryChange(const Change& change);
};
