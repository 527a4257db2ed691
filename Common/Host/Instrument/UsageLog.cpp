#include "Instrument/UsageLog.h"

#include "Services/WholeFile.h"
#include "Text/Abort.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <limits>
#include <mutex>
#include <thread>

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

namespace {

constexpr char setup[] = "PRAGMA journal_mode = WAL;"
                         "PRAGMA synchronous = NORMAL;"
                         "CREATE TABLE IF NOT EXISTS counters ("
                         " key TEXT PRIMARY KEY," // the name in lower case
                         " name TEXT NOT NULL,"   // as first spelled
                         " value INTEGER NOT NULL"
                         ") WITHOUT ROWID";

enum Query
{
    Read,
    Add,
    Assign,
    Remove,
    ListNames,
    queryCount
};

constexpr const char* queries_lc[] = {
    "SELECT value FROM counters WHERE key = ?1",
    ("INSERT INTO counters VALUES (?1, ?2, ?3) ON CONFLICT DO UPDATE SET value = value + ?3"
     " WHERE typeof(value + ?3) = 'integer'"), // a sum beyond 64 bits would become a floating number
    "INSERT INTO counters VALUES (?1, ?2, ?3) ON CONFLICT DO UPDATE SET value = ?3",
    "DELETE FROM counters WHERE key = ?1",
    "SELECT name FROM counters",
};
static_assert(std::size(queries_lc) == queryCount);

constexpr std::chrono::milliseconds patience(1000);

/// Waits for other processes to write, unless an abort is requested.
int WaitWhileBusy(void*, int timesBefore)
{
    constexpr std::chrono::milliseconds step(5);
    if (timesBefore * step >= patience || Abort::IsRequested())
        return 0;
    std::this_thread::sleep_for(step);
    return 1;
}

/// SQLite does not wait by itself where two connections change the journal of a new file at once.
bool TrySetUp(sqlite3* connection)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    int result = SQLITE_BUSY;
    do
        result = sqlite3_exec(connection, setup, nullptr, nullptr, nullptr);
    while (result == SQLITE_BUSY && std::chrono::steady_clock::now() < end && WaitWhileBusy(nullptr, 0));
    return result == SQLITE_OK;
}

struct Closer
{
    void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

/// A prepared statement in use; given back at the end, so that it does not keep the file's present state readable.
class Use
{
public:
    explicit Use(sqlite3_stmt* statement) : statement(statement) {}
    ~Use()
    {
        sqlite3_reset(statement);
        sqlite3_clear_bindings(statement);
    }
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;

    void BindName(const WString& name)
    {
        Bind(1, name.ToLowerCase());
        if (sqlite3_bind_parameter_count(statement) > 1)
            Bind(2, name);
    }
    void BindValue(long long value) { sqlite3_bind_int64(statement, 3, value); }
    bool NextRow() { return sqlite3_step(statement) == SQLITE_ROW; }
    bool Finish() { return sqlite3_step(statement) == SQLITE_DONE; }
    long long GetNumber() const { return sqlite3_column_int64(statement, 0); }
    WString GetText() const
    {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        return WString::FromUtf8(text ? text : "");
    }

private:
    sqlite3_stmt* statement;

    void Bind(int index, const WString& text)
    {
        const std::string bytes = text.ToUtf8();
        sqlite3_bind_text(statement, index, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT);
    }
};

/// The file as one that nobody changes, which is how SQLite reads it without files of its own beside it.
std::string GetUnchangingUri(const std::string& path)
{
    std::string uri = "file:";
    for (const char ch : std::filesystem::absolute(path).string()) {
        if (ch == '%' || ch == '?' || ch == '#')
            uri += ch == '%' ? "%25" : ch == '?' ? "%3f" : "%23";
        else
            uri += ch;
    }
    return uri + "?immutable=1";
}

bool IsFolderWritable(const std::string& path)
{
    const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
    return faccessat(AT_FDCWD, folder.c_str(), W_OK, AT_EACCESS) == 0;
}

} // namespace

struct UsageLog::Database
{
    std::mutex lock;
    std::unique_ptr<sqlite3, Closer> connection; // outlives the statements
    std::array<std::unique_ptr<sqlite3_stmt, Closer>, queryCount> statements;

    bool TryOpen(const std::string& path);
    bool TryOpenForReading(const std::string& path);
    std::string GetError() const { return sqlite3_errmsg(connection.get()); }
    sqlite3_stmt* operator[](Query query) const { return statements[query].get(); }

private:
    bool TryConnect(const std::string& name, int flags);
    bool TryPrepare();
};

bool UsageLog::Database::TryConnect(const std::string& name, int flags)
{
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &opened, flags, nullptr);
    connection.reset(opened); // holds the reason when opening failed
    if (result != SQLITE_OK)
        return false;
    sqlite3_busy_handler(connection.get(), WaitWhileBusy, nullptr);
    return true;
}

bool UsageLog::Database::TryPrepare()
{
    for (std::size_t i = 0; i < queryCount; ++i) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v3(connection.get(), queries_lc[i], -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
            SQLITE_OK)
            return false;
        statements[i].reset(statement);
    }
    return true;
}

bool UsageLog::Database::TryOpen(const std::string& path)
{
    return TryConnect(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE) && TrySetUp(connection.get()) && TryPrepare();
}

bool UsageLog::Database::TryOpenForReading(const std::string& path)
{
    return TryConnect(GetUnchangingUri(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI) && TryPrepare();
}

UsageLog::UsageLog() = default;
UsageLog::~UsageLog() = default;

void UsageLog::Open(const std::string& path)
{
    database = std::make_unique<Database>();
    if (database->TryOpen(path))
        return;
    const WString reason = WString::FromUtf8(database->GetError());
    database = std::make_unique<Database>();
    if (!IsFolderWritable(path) && database->TryOpenForReading(path))
        return;
    database.reset();
    WholeFile::Fail(path, reason);
}

bool UsageLog::TryGetUsageValue(const wchar_t* name, int& value) const
{
    if (!database)
        return false;
    const std::lock_guard guard(database->lock);
    Use query((*database)[Read]);
    query.BindName(name);
    if (!query.NextRow())
        return false;
    value = static_cast<int>(
        std::clamp<long long>(query.GetNumber(), std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    return true;
}

bool UsageLog::Increment(const wchar_t* name, long long by)
{
    if (!database)
        return false;
    const std::lock_guard guard(database->lock);
    Use query((*database)[Add]);
    query.BindName(name);
    query.BindValue(by);
    return query.Finish();
}

bool UsageLog::Set(const wchar_t* name, long long value)
{
    if (!database)
        return false;
    const std::lock_guard guard(database->lock);
    Use query((*database)[Assign]);
    query.BindName(name);
    query.BindValue(value);
    return query.Finish();
}

bool UsageLog::TryDelete(const wchar_t* name)
{
    if (!database)
        return false;
    const std::lock_guard guard(database->lock);
    Use query((*database)[Remove]);
    query.BindName(name);
    return query.Finish() && sqlite3_changes(database->connection.get()) != 0;
}

void UsageLog::GetNames(WStringArray& names) const
{
    names.Clear();
    if (!database)
        return;
    const std::lock_guard guard(database->lock);
    Use query((*database)[ListNames]);
    while (query.NextRow())
        names.Add(query.GetText());
    names.Sort();
}
