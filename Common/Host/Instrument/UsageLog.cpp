#include "Instrument/UsageLog.h"

#include "Instrument/UsageDatabase.h"
#include "Services/Clock.h"
#include "Services/WholeFile.h"
#include "Text/HostError.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>
#include <mutex>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

using State = UsageDatabase::State;

namespace {

constexpr const char* endings_lc[] = {"", "-wal", "-shm"}; // of the file's name: the journal and its index

/// Whether this process may change the file, and those beside it, or make it.
bool MayWrite(const std::string& path)
{
    const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
    const auto isDenied = [](const std::string& name, int mode) {
        return faccessat(AT_FDCWD, name.c_str(), mode, AT_EACCESS) != 0;
    };
    return !isDenied(folder, W_OK) && std::ranges::none_of(endings_lc, [&](const char* ending) {
        return !isDenied(path + ending, F_OK) && isDenied(path + ending, W_OK);
    });
}

std::string GetNameAside(const std::string& path)
{
    for (int i = 1;; ++i)
        if (std::string name = path + ".damaged" + std::to_string(i); !std::filesystem::exists(name))
            return name;
}

std::string MoveAside(const std::string& path)
{
    std::string aside = GetNameAside(path);
    if (std::rename(path.c_str(), aside.c_str()) != 0)
        WholeFile::Fail(path, errno);
    std::rename((path + "-wal").c_str(), (aside + "-wal").c_str());
    return aside;
}

void RemoveFiles(const std::string& path)
{
    for (const char* ending : endings_lc)
        unlink((path + ending).c_str());
}

/// Files that are gone at the end of the scope, and before it if a process that was killed has left them.
class TemporaryFiles
{
public:
    explicit TemporaryFiles(const std::string& path) : path(path) { RemoveFiles(path); }
    ~TemporaryFiles() { RemoveFiles(path); }
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;

    const std::string path;
};

} // namespace

/// An open file, and what has been counted but is not in it yet.
class [[gnu::visibility("hidden")]] UsageLog::Counters
{
public:
    std::mutex lock; // held by whoever calls an operation

    /// Opens the file, or begins a new one in place of one that is not there or does not serve; reports what is wrong
    /// with it. Throws HostException(FileError).
    Counters(const std::string& path, WString& report) : path(WholeFile::Resolve(path)), lastReport(Open())
    {
        report = lastReport;
    }
    ~Counters();

    void Gather(const WString& name, unsigned int by);
    /// Writes in one transaction what is gathered; false, and it stays gathered, when the file cannot be written. It
    /// stays gathered too where memory is short, which is thrown.
    bool Write(bool waits = true);
    bool TryWrite(bool waits = true) noexcept;
    void WriteIfDue() noexcept;

    /// The file with all that was counted before in it, as far as it can be written.
    UsageDatabase& GetUpToDate()
    {
        Write();
        return database;
    }
    /// Makes a change that is to last, behind all that was counted before.
    template <typename Change>
    bool TryMakeLasting(const Change& change)
    {
        if (!Write())
            return false;
        hasLasting = hasLasting || database.TryMakeDurable();
        return hasLasting && change(database);
    }

    WString TakeReport()
    {
        return std::exchange(report, WString());
    }
    WString GetFault() const
    {
        return fault.IsEmpty() ? WString::FromUtf8(database.GetError()) : fault;
    }

private:
    static constexpr unsigned int interval = 100; // ms

    /// What tells that the file is to be opened again.
    struct Sight
    {
        FileStamp stamp;
        bool hasJournal = false;

        bool operator==(const Sight&) const = default;
    };

    const std::string path;
    UsageDatabase database;
    bool isForReading = false;
    Sight seen;    // when it was opened
    WString fault; // why it is not, or is for reading only
    bool hasLasting = false;
    std::map<WString, long long> gathered;
    unsigned int gatheredSince = 0; // ticks of the clock
    WString lastReport;
    WString report; // the last one, until it is taken

    WString Open();
    WString OpenForReading(const WString& reason);
    WString Renew() const;
    WString ReportOddRows();
    void Take(UsageDatabase opened, bool forReading, const Sight& sight);
    Sight Look(bool forReading) const;
    bool TryFollow();
    bool TryAddGathered(bool waits);
};

WString UsageLog::Counters::Open()
{
    std::error_code error; // what it is cannot be seen: opening it tells why
    if (const auto status = std::filesystem::status(path, error); exists(status) && !is_regular_file(status))
        WholeFile::Fail(path, L"Not a regular file");
    if (!MayWrite(path))
        return OpenForReading(WString());
    UsageDatabase opened;
    WString report;
    Sight sight = Look(false);
    State state = WholeFile::GetStamp(path).size == 0 ? State::Damaged : opened.Open(path);
    if (state == State::Damaged) {
        opened = UsageDatabase(); // whose locks end
        report = Renew();
        sight = Look(false);
        state = opened.Open(path);
    }
    if (state != State::Open)
        return OpenForReading(WString::FromUtf8(opened.GetError()));
    Take(std::move(opened), false, sight);
    return report.IsEmpty() ? ReportOddRows() : report;
}

/// Where the file may be written, but cannot be just now, the reason is given.
WString UsageLog::Counters::OpenForReading(const WString& reason)
{
    UsageDatabase opened;
    State state = State::Open;
    Sight sight;
    do {
        sight = Look(true);
        opened = UsageDatabase();
        state = opened.OpenForReading(path);
    } while (state != State::Open && Look(true) != sight); // its owner was at work
    if (state != State::Open)
        WholeFile::Fail(path, reason.IsEmpty() ? WString::FromUtf8(opened.GetError()) : reason);
    Take(std::move(opened), true, sight);
    fault = reason;
    return reason.IsEmpty() ? ReportOddRows()
                            : WString::FromUtf8(path) + L": " + reason + L"; the counters can only be read";
}

void UsageLog::Counters::Take(UsageDatabase opened, bool forReading, const Sight& sight)
{
    database = std::move(opened);
    isForReading = forReading;
    seen = sight;
    hasLasting = false;
    fault.Clear();
}

/// Begins a new file. What is there is kept aside, unless another process was faster to find what is wrong with it.
WString UsageLog::Counters::Renew() const
{
    const WholeFile::Lock lock(path);
    const FileStamp stamp = WholeFile::GetStamp(path);
    if (stamp.size != 0 && UsageDatabase().Open(path) != State::Damaged)
        return WString();
    const TemporaryFiles made(path + ".new"); // for nobody to find a part of it, nor to lose a file where is no room
    // SQLite would keep others of the group from writing, and tell another reason when there is no room for a file.
    if (!FileDescriptor(open(made.path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666)).IsOpen())
        WholeFile::Fail(path, errno);
    if (UsageDatabase empty; empty.Create(made.path) != State::Open)
        WholeFile::Fail(path, WString::FromUtf8(empty.GetError()));
    WString report;
    if (stamp != FileStamp())
        report = WString::Format(L"%s: %s; it is kept as %s, and a new one is begun", WString::FromUtf8(path),
            stamp.size == 0 ? L"empty" : L"damaged",
            WString::FromUtf8(std::filesystem::path(MoveAside(path)).filename().string()));
    RemoveFiles(path); // the journal of one that stood there before
    if (std::rename(made.path.c_str(), path.c_str()) != 0)
        WholeFile::Fail(path, errno);
    return report;
}

/// A row that another program wrote is no damage.
WString UsageLog::Counters::ReportOddRows()
{
    WStringArray names;
    database.ReadOddNames(names);
    if (names.IsEmpty())
        return WString();
    const WString others = names.Count() == 1 ? WString() : WString::Format(L" (and %u more)", names.Count() - 1);
    return WString::Format(
        L"%s: the counter %s%s cannot be understood, and is left as it is", WString::FromUtf8(path), names[0], others);
}

/// Of a file that is written no more than whether it is the same: what others change there is seen.
UsageLog::Counters::Sight UsageLog::Counters::Look(bool forReading) const
{
    const FileStamp stamp = WholeFile::GetStamp(path);
    if (forReading)
        return {stamp, UsageDatabase::HasJournal(path)};
    return {{stamp.node}};
}

/// Opens the file again when another has taken its place, or when it can only be read and was changed. False when that
/// fails: what was read before can be read still.
bool UsageLog::Counters::TryFollow()
try {
    if (Look(isForReading) == seen)
        return true;
    const WString news = Open();
    if (!news.IsEmpty() && news != lastReport)
        report = lastReport = news;
    return true;
} catch (const HostException& failure) {
    fault = failure.GetMessage();
    return false;
}

UsageLog::Counters::~Counters()
{
    TryWrite();
    if (hasLasting)
        database.Preserve();
}

void UsageLog::Counters::Gather(const WString& name, unsigned int by)
{
    if (gathered.empty())
        gatheredSince = GetTickCount();
    gathered[name] += by;
}

bool UsageLog::Counters::Write(bool waits)
try {
    if (!TryFollow() || (!gathered.empty() && !TryAddGathered(waits)))
        return false;
    gathered.clear();
    return true;
} catch (...) { // mostly for want of memory
    database.Rollback();
    throw;
}

bool UsageLog::Counters::TryWrite(bool waits) noexcept
try {
    return Write(waits);
} catch (...) {
    return false;
}

void UsageLog::Counters::WriteIfDue() noexcept
{
    if (gathered.empty())
        return;
    const unsigned int now = GetTickCount();
    if (now - gatheredSince < interval)
        return;
    gatheredSince = now; // for the next attempt, if this one fails
    TryWrite(false);     // a command does not wait for other processes to be counted
}

bool UsageLog::Counters::TryAddGathered(bool waits)
{
    if (!database.Begin(waits))
        return false;
    for (const auto& [name, by] : gathered) {
        if (!database.Add(name, by)) {
            database.Rollback();
            return false;
        }
    }
    return database.Commit();
}

UsageLog::UsageLog() = default;
UsageLog::~UsageLog() = default;

WString UsageLog::Open(const std::string& path)
{
    counters.reset();
    WString report;
    counters = std::make_unique<Counters>(path, report);
    return report;
}

bool UsageLog::TryGetUsageValue(const wchar_t* name, int& value) const
{
    if (!counters)
        return false;
    const std::lock_guard guard(counters->lock);
    long long number = 0;
    if (!counters->GetUpToDate().TryRead(name, number))
        return false;
    value = static_cast<int>(
        std::clamp<long long>(number, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
    return true;
}

void UsageLog::GetNames(WStringArray& names) const
{
    names.Clear();
    if (!counters)
        return;
    const std::lock_guard guard(counters->lock);
    counters->GetUpToDate().ReadNames(names);
    names.Sort();
}

template <typename Change>
bool UsageLog::TryChange(const Change& change)
{
    if (!counters)
        return false;
    const std::lock_guard guard(counters->lock);
    return counters->TryMakeLasting(change);
}

bool UsageLog::Increment(const wchar_t* name, long long by)
{
    return TryChange([&](UsageDatabase& database) { return database.Add(name, by); });
}

bool UsageLog::Set(const wchar_t* name, long long value)
{
    return TryChange([&](UsageDatabase& database) { return database.Assign(name, value); });
}

bool UsageLog::TryDelete(const wchar_t* name)
{
    return TryChange([&](UsageDatabase& database) { return database.Remove(name); });
}

void UsageLog::Count(const WString& name, unsigned int by)
{
    if (!counters)
        return;
    const std::lock_guard guard(counters->lock);
    counters->Gather(name, by);
    counters->WriteIfDue();
}

WString UsageLog::GetFault() const
{
    if (!counters)
        return L"there is no usable file";
    const std::lock_guard guard(counters->lock);
    return counters->GetFault();
}

WString UsageLog::TakeReport()
{
    if (!counters)
        return WString();
    const std::lock_guard guard(counters->lock);
    return counters->TakeReport();
}

void UsageLog::WriteCounts() noexcept
{
    if (!counters)
        return;
    const std::lock_guard guard(counters->lock);
    counters->TryWrite();
}

void UsageLog::WriteCountsIfDue() noexcept
{
    if (!counters)
        return;
    const std::lock_guard guard(counters->lock);
    counters->WriteIfDue();
}
