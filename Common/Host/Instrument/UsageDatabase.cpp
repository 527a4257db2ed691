#include "Instrument/UsageDatabase.h"

#include "Services/WholeFile.h"
#include "Text/Abort.h"

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <new>
#include <optional>
#include <system_error>
#include <thread>

#include <sqlite3.h>
#include <unistd.h>

namespace {

constexpr char setup[] = "PRAGMA synchronous = OFF;" // until there is something that must last
                         "PRAGMA journal_mode = WAL;";

constexpr char creation[] = "CREATE TABLE counters ("
                            " key TEXT PRIMARY KEY," // the name in lower case
                            " name TEXT NOT NULL,"   // as first spelled
                            " value INTEGER NOT NULL"
                            ") WITHOUT ROWID";

/// A row for each damage.
constexpr char examination[] = "SELECT * FROM pragma_quick_check(1) WHERE quick_check <> 'ok'";

/// Of a row as it is written here.
constexpr char isSound[] = "(typeof(value) = 'integer' AND lower(name) = key)";

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

/// For the length of a scope a connection waits for nobody.
class Impatience
{
public:
    explicit Impatience(sqlite3* connection) : connection(connection)
    {
        sqlite3_busy_handler(connection, nullptr, nullptr);
    }
    ~Impatience() { sqlite3_busy_handler(connection, WaitWhileBusy, nullptr); }
    Impatience(const Impatience&) = delete;
    Impatience& operator=(const Impatience&) = delete;

private:
    sqlite3* const connection;
};

/// SQLite does not wait by itself where two connections change the journal of a new file at once.
bool TryExecute(sqlite3* connection, const char* statement)
{
    const auto end = std::chrono::steady_clock::now() + patience;
    int result = SQLITE_BUSY;
    do
        result = sqlite3_exec(connection, statement, nullptr, nullptr, nullptr);
    while (result == SQLITE_BUSY && std::chrono::steady_clock::now() < end && WaitWhileBusy(nullptr, 0));
    return result == SQLITE_OK;
}

/// The first value that the query yields, as text; none when it yields no row or fails.
std::optional<std::string> Ask(sqlite3* connection, const char* query)
{
    std::optional<std::string> answer;
    const auto take = [](void* target, int, char** values, char**) {
        *static_cast<std::optional<std::string>*>(target) = values[0] ? values[0] : "";
        return 1; // enough
    };
    sqlite3_exec(connection, query, take, &answer, nullptr);
    return answer;
}

/// The SQL function lower(text), as keys are made: SQLite's own knows no letters outside ASCII.
void PutLowerCase(sqlite3_context* context, int, sqlite3_value** values) noexcept
try {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(values[0]));
    const std::string lower = WString::FromUtf8(text ? text : "").ToLowerCase().ToUtf8();
    sqlite3_result_text(context, lower.data(), static_cast<int>(lower.size()), SQLITE_TRANSIENT);
} catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
}

/// Whether a failure comes from what the file holds, and not from how it can be used just now.
bool IsOfContents(int result)
{
    switch (result & 0xFF) {
    case SQLITE_ERROR: // in statements that suit every sound file
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_TOOBIG: return true;
    default: return false;
    }
}

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
    bool NextRow() { return Step() == SQLITE_ROW; }
    bool Finish() { return Step() == SQLITE_DONE; }
    void Try() noexcept { sqlite3_step(statement); }
    long long GetNumber() const { return sqlite3_column_int64(statement, 0); }
    WString GetText() const
    {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, 0));
        if (!text && sqlite3_column_type(statement, 0) != SQLITE_NULL)
            throw std::bad_alloc();
        return WString::FromUtf8(text ? text : "");
    }

private:
    sqlite3_stmt* statement;

    void Bind(int index, const WString& text)
    {
        const std::string bytes = text.ToUtf8();
        ThrowIfShort(
            sqlite3_bind_text(statement, index, bytes.data(), static_cast<int>(bytes.size()), SQLITE_TRANSIENT));
    }

    int Step()
    {
        const int result = sqlite3_step(statement);
        ThrowIfShort(result);
        return result;
    }

    void ThrowIfShort(int result) const
    {
        const bool isInFile =
            result == SQLITE_IOERR && sqlite3_extended_errcode(sqlite3_db_handle(statement)) == SQLITE_IOERR_NOMEM;
        if (result == SQLITE_NOMEM || isInFile)
            throw std::bad_alloc();
    }
};

/// The file as SQLite reads it without files of its own beside it. One that has no journal is told to be one that
/// nobody changes.
std::string GetReadingUri(const std::string& path)
{
    std::string uri = "file:";
    for (const char ch : std::filesystem::absolute(path).string()) {
        if (ch == '%' || ch == '?' || ch == '#')
            uri += ch == '%' ? "%25" : ch == '?' ? "%3f" : "%23";
        else
            uri += ch;
    }
    return uri + (UsageDatabase::HasJournal(path) ? "?readonly_shm=1" : "?immutable=1");
}

/// Whether the end of the last page is missing, which SQLite takes for zeros. A page that is being moved from the
/// journal has its whole there.
bool IsCutShort(sqlite3* connection, const std::string& path)
{
    const std::optional<std::string> pageSize = Ask(connection, "PRAGMA page_size");
    return pageSize && !UsageDatabase::HasJournal(path) && WholeFile::GetStamp(path).size % std::stol(*pageSize) != 0;
}

} // namespace

const UsageDatabase::QueryRow UsageDatabase::queries[] = {
    {"SELECT value FROM counters WHERE key = ?1 AND ", isSound},
    {"INSERT INTO counters VALUES (?1, ?2, ?3) ON CONFLICT DO UPDATE SET value = value + ?3"
     " WHERE typeof(value + ?3) = 'integer'"}, // a sum beyond 64 bits would become a floating number
    {"INSERT INTO counters VALUES (?1, ?2, ?3) ON CONFLICT DO UPDATE SET value = ?3"},
    {"DELETE FROM counters WHERE key = ?1"},
    {"SELECT name FROM counters WHERE ", isSound},
    {"SELECT name FROM counters WHERE NOT ", isSound},
    {"BEGIN IMMEDIATE"},
    {"COMMIT"},
    {"ROLLBACK"},
};

void UsageDatabase::Closer::operator()(sqlite3* connection) const
{
    sqlite3_close(connection);
}

void UsageDatabase::Closer::operator()(sqlite3_stmt* statement) const
{
    sqlite3_finalize(statement);
}

UsageDatabase::UsageDatabase() = default;
UsageDatabase::UsageDatabase(UsageDatabase&& other) noexcept = default;
UsageDatabase::~UsageDatabase() = default;

/// The statements end before their connection.
UsageDatabase& UsageDatabase::operator=(UsageDatabase&& other) noexcept
{
    statements = std::move(other.statements);
    connection = std::move(other.connection);
    changeError = other.changeError;
    return *this;
}

bool UsageDatabase::TryConnect(const std::string& name, int flags)
{
    sqlite3* opened = nullptr;
    const int result = sqlite3_open_v2(name.c_str(), &opened, flags, nullptr);
    connection.reset(opened); // holds the reason when opening failed
    if (result != SQLITE_OK)
        return false;
    sqlite3_busy_handler(opened, WaitWhileBusy, nullptr);
    return sqlite3_create_function(opened, "lower", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, PutLowerCase,
               nullptr, nullptr) == SQLITE_OK;
}

bool UsageDatabase::TryPrepare()
{
    for (std::size_t i = 0; i < queryCount; ++i) {
        sqlite3_stmt* statement = nullptr;
        const std::string text = std::string(queries[i].text) + queries[i].condition;
        if (sqlite3_prepare_v3(connection.get(), text.c_str(), -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr) !=
            SQLITE_OK)
            return false;
        statements[i].reset(statement);
    }
    return true;
}

UsageDatabase::State UsageDatabase::Create(const std::string& path)
{
    constexpr int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    if (!TryConnect(path, flags) || !TryExecute(connection.get(), setup) || !TryExecute(connection.get(), creation))
        return State::Unusable;
    const State state = Examine();
    if (state == State::Open)
        Preserve(); // so that a file without the table is a damaged one
    return state;
}

UsageDatabase::State UsageDatabase::Open(const std::string& path)
{
    if (!TryConnect(path, SQLITE_OPEN_READWRITE) || !TryExecute(connection.get(), setup))
        return GetFailure();
    const State state = Examine();
    return state == State::Open && IsCutShort(connection.get(), path) ? State::Damaged : state;
}

UsageDatabase::State UsageDatabase::OpenForReading(const std::string& path)
{
    return TryConnect(GetReadingUri(path), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI) ? Examine() : GetFailure();
}

UsageDatabase::State UsageDatabase::Examine()
{
    if (!TryPrepare())
        return GetFailure();
    if (Ask(connection.get(), examination))
        return State::Damaged;
    const int result = sqlite3_errcode(connection.get());
    return result == SQLITE_OK || result == SQLITE_DONE ? State::Open : GetFailure();
}

UsageDatabase::State UsageDatabase::GetFailure() const
{
    return IsOfContents(sqlite3_errcode(connection.get())) ? State::Damaged : State::Unusable;
}

std::string UsageDatabase::GetError() const
{
    if (!connection) // out of memory
        return sqlite3_errstr(SQLITE_NOMEM);
    const int error = changeError != SQLITE_OK ? changeError : sqlite3_errcode(connection.get());
    const int systemError = sqlite3_system_errno(connection.get());
    const char* const path = sqlite3_db_filename(connection.get(), "main");
    if (systemError == ENOENT && path && access(path, F_OK) == 0) // as the last attempt, to read it, has ended
        return "a file beside it cannot be made";
    if (((error & 0xFF) == SQLITE_IOERR || (error & 0xFF) == SQLITE_CANTOPEN) && systemError != 0)
        return std::generic_category().message(systemError);
    return sqlite3_errstr(error);
}

bool UsageDatabase::HasJournal(const std::string& path)
{
    const std::string journal = path + "-wal";
    return WholeFile::GetStamp(journal).size != 0 && access(journal.c_str(), R_OK) == 0 &&
        access((path + "-shm").c_str(), R_OK) == 0;
}

/// Keeps the reason of a change that failed, which rolling back would overwrite.
bool UsageDatabase::NoteChange(bool isMade) noexcept
{
    if (!isMade)
        changeError = sqlite3_errcode(connection.get());
    return isMade;
}

bool UsageDatabase::TryRead(const WString& name, long long& value)
{
    Use query((*this)[ReadValue]);
    query.BindName(name);
    if (!query.NextRow())
        return false;
    value = query.GetNumber();
    return true;
}

void UsageDatabase::ReadNames(WStringArray& names)
{
    ReadTexts(ListNames, names);
}

void UsageDatabase::ReadOddNames(WStringArray& names)
{
    ReadTexts(ListOddNames, names);
}

void UsageDatabase::ReadTexts(Query query, WStringArray& texts)
{
    Use use((*this)[query]);
    while (use.NextRow())
        texts.Add(use.GetText());
}

bool UsageDatabase::Add(const WString& name, long long by)
{
    Use query((*this)[AddValue]);
    query.BindName(name);
    query.BindValue(by);
    return NoteChange(query.Finish());
}

bool UsageDatabase::Assign(const WString& name, long long value)
{
    Use query((*this)[AssignValue]);
    query.BindName(name);
    query.BindValue(value);
    return NoteChange(query.Finish());
}

bool UsageDatabase::Remove(const WString& name)
{
    Use query((*this)[RemoveRow]);
    query.BindName(name);
    return NoteChange(query.Finish()) && sqlite3_changes(connection.get()) != 0;
}

bool UsageDatabase::Execute(Query query)
{
    return NoteChange(Use((*this)[query]).Finish());
}

bool UsageDatabase::Begin(bool waits)
{
    std::optional<Impatience> impatience;
    if (!waits)
        impatience.emplace(connection.get());
    return Execute(BeginTransaction);
}

bool UsageDatabase::Commit()
{
    if (Execute(CommitTransaction))
        return true;
    Rollback();
    return false;
}

void UsageDatabase::Rollback() noexcept
{
    Use((*this)[RollbackTransaction]).Try();
}

bool UsageDatabase::TryMakeDurable() noexcept
{
    return sqlite3_exec(connection.get(), "PRAGMA synchronous = NORMAL", nullptr, nullptr, nullptr) == SQLITE_OK;
}

void UsageDatabase::Preserve() noexcept
{
    sqlite3_wal_checkpoint_v2(connection.get(), nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
    // What a process that never waits has moved into the file before is not on the disk yet.
    sqlite3_file* file = nullptr;
    sqlite3_file_control(connection.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file && file->pMethods)
        file->pMethods->xSync(file, SQLITE_SYNC_NORMAL);
}
