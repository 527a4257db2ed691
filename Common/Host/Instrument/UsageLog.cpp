#include "Instrument/UsageLog.h"

#include "Instrument/UsageDatabase.h"
#include "Instrument/UsageJournal.h"
#include "Services/Clock.h"
#include "Services/WholeFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>
#include <mutex>

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
        if (const std::string name = path + ".damaged" + std::to_string(i); !std::filesystem::exists(name))
            return name;
}

std::string CopyAside(const std::string& path)
{
    const std::string aside = GetNameAside(path);
    for (const std::string ending : {"", "-wal"}) {
        std::string bytes;
        if (const int errorNumber = WholeFile::Read(path + ending, bytes); errorNumber != 0)
            WholeFile::Fail(path + ending, errorNumber);
        WholeFile::Write(aside + ending, bytes);
    }
    return aside;
}

std::string MoveAside(const std::string& path)
{
    const std::string aside = GetNameAside(path);
    if (std::rename(path.c_str(), aside.c_str()) != 0)
        WholeFile::Fail(path, errno);
    std::rename((path + "-wal").c_str(), (aside + "-wal").c_str());
    unlink((path + "-shm").c_str());
    return aside;
}

WString DescribeDamage(const std::string& path, const std::string& aside, const wchar_t* counters)
{
    return WString::Format(L"%s: damaged; it is kept as %s, and %s", WString::FromUtf8(path),
        WString::FromUtf8(std::filesystem::path(aside).filename().string()), counters);
}

} // namespace

/// An open file, and what has been counted but is not in it yet.
class [[gnu::visibility("hidden")]] UsageLog::Counters
{
public:
    std::mutex lock; // held by whoever calls an operation

    ~Counters();

    /// Opens the file, in place of a damaged one a new one, which it yields a report of. Throws
    /// HostException(FileError).
    WString Open(const std::string& path);

    void Gather(const WString& name, unsigned int by);
    /// Writes in one transaction what is gathered; false, and it stays gathered, when the file cannot be written.
    bool Write(bool waits = true) noexcept;
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
        hasLasting = hasLasting || database.TryMakeDurable();
        return hasLasting && Write() && change(database);
    }

    std::string GetError() const
    {
        return database.GetError();
    }

private:
    static constexpr unsigned int interval = 100; // ms

    UsageDatabase database;
    bool hasLasting = false;
    std::map<WString, long long> gathered;
    unsigned int gatheredSince = 0; // ticks of the clock

    State TryOpen(const std::string& path);
    WString Repair(const std::string& path);
    bool TryAddGathered(bool waits);
};

WString UsageLog::Counters::Open(const std::string& path)
{
    if (!MayWrite(path)) {
        if (const State state = database.OpenForReading(path); state != State::Open)
            WholeFile::Fail(path, state == State::Damaged ? L"damaged" : WString::FromUtf8(database.GetError()));
        return WString();
    }
    const State state = UsageJournal::IsSound(path) ? TryOpen(path) : State::Damaged;
    if (state == State::Unusable)
        WholeFile::Fail(path, WString::FromUtf8(database.GetError()));
    return state == State::Damaged ? Repair(path) : WString();
}

State UsageLog::Counters::TryOpen(const std::string& path)
{
    database = UsageDatabase();
    return database.Open(path);
}

/// Others may have found the damage at the same time, and the first of them has repaired it.
WString UsageLog::Counters::Repair(const std::string& path)
{
    database = UsageDatabase(); // whose locks end
    const WholeFile::Lock lock(path);
    WString report;
    const bool isJournalSound = UsageJournal::IsSound(path);
    if (!isJournalSound)
        report = DescribeDamage(path, CopyAside(path), L"the counters are those from before the damage");
    State state = TryOpen(path);
    if (state == State::Damaged) {
        database = UsageDatabase();
        report = DescribeDamage(path, MoveAside(path), L"a new one is begun");
        state = TryOpen(path);
    }
    if (state != State::Open)
        WholeFile::Fail(path, WString::FromUtf8(database.GetError()));
    if (!isJournalSound)
        database.Preserve(); // which ends the damaged journal
    return report;
}

UsageLog::Counters::~Counters()
{
    Write();
    if (hasLasting)
        database.Preserve();
}

void UsageLog::Counters::Gather(const WString& name, unsigned int by)
{
    if (gathered.empty())
        gatheredSince = GetTickCount();
    gathered[name] += by;
}

bool UsageLog::Counters::Write(bool waits) noexcept
try {
    if (gathered.empty())
        return true;
    if (!TryAddGathered(waits))
        return false;
    gathered.clear();
    return true;
} catch (...) { // mostly for want of memory
    database.Rollback();
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
    Write(false);        // a command does not wait for other processes to be counted
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
    auto opened = std::make_unique<Counters>();
    const WString report = opened->Open(path);
    counters = std::move(opened);
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
    return WString::FromUtf8(counters->GetError());
}

void UsageLog::WriteCounts() noexcept
{
    if (!counters)
        return;
    const std::lock_guard guard(counters->lock);
    counters->Write();
}

void UsageLog::WriteCountsIfDue() noexcept
{
    if (!counters)
        return;
    const std::lock_guard guard(counters->lock);
    counters->WriteIfDue();
}
