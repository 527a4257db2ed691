#pragma once

#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <array>
#include <memory>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

/// The counters' table in its SQLite file. Not locked. An operation waits for other processes that write, 1 s at most
/// and no longer than until an abort is requested, and then yields false, as it does when the file cannot be written.
///
/// What is committed survives the death of the process. What must survive a power failure too is changed behind
/// TryMakeDurable and sent to the disk by Preserve; a process that changes nothing of the kind never waits for the
/// disk.
class UsageDatabase
{
public:
    UsageDatabase();
    UsageDatabase(UsageDatabase&& other) noexcept;
    UsageDatabase& operator=(UsageDatabase&& other) noexcept;
    ~UsageDatabase();

    enum class State
    {
        Open,
        Damaged, // or no such database; the object does not serve
        Unusable // just now or for this process, as GetError says; the object serves for that alone
    };

    /// Opens the file, and examines it.
    State Open(const std::string& path);
    /// Makes a file that is not there yet, and opens it. It is on the disk then.
    State Create(const std::string& path);
    /// Opens a file that cannot or may not be changed: makes no files beside it, as SQLite would, which those who may
    /// change it could then not write. Where there is no journal what others change later is not seen.
    State OpenForReading(const std::string& path);
    /// Whether changes that can be read stand in a journal beside the file, as while it is open for changes.
    static bool HasJournal(const std::string& path);
    /// Of the last change that failed, else of opening.
    std::string GetError() const;

    bool TryRead(const WString& name, long long& value);
    void ReadNames(WStringArray& names);
    /// The names of rows that are not as they are written here, which no other operation reads.
    void ReadOddNames(WStringArray& names);
    bool Add(const WString& name, long long by);
    bool Assign(const WString& name, long long value);
    /// False when there is no such counter as well.
    bool Remove(const WString& name);

    /// From a Begin that succeeded to Commit all changes are made or, when Commit fails or Rollback is called, none.
    bool Begin(bool waits);
    bool Commit();
    void Rollback() noexcept;

    /// From now on changes go to the disk in order, so that a power failure does not damage the file.
    bool TryMakeDurable() noexcept;
    /// Waits until all changes are on the disk.
    void Preserve() noexcept;

private:
    enum Query
    {
        ReadValue,
        AddValue,
        AssignValue,
        RemoveRow,
        ListNames,
        ListOddNames,
        BeginTransaction,
        CommitTransaction,
        RollbackTransaction,
        queryCount
    };
    struct QueryRow
    {
        const char* text;
        const char* condition = ""; // behind it
    };
    static const QueryRow queries[queryCount];

    struct Closer
    {
        void operator()(sqlite3* connection) const;
        void operator()(sqlite3_stmt* statement) const;
    };
    std::unique_ptr<sqlite3, Closer> connection; // outlives the statements
    std::array<std::unique_ptr<sqlite3_stmt, Closer>, queryCount> statements;
    int changeError = 0; // of the last change that failed

    bool TryConnect(const std::string& name, int flags);
    bool TryPrepare();
    State Examine();
    State GetFailure() const;
    bool Execute(Query query);
    bool NoteChange(bool isMade) noexcept;
    void ReadTexts(Query query, WStringArray& texts);
    sqlite3_stmt* operator[](Query query) const { return statements[query].get(); }
};
