#include "Instrument/UsageLog.h"

#include "Instrument/UsageDatabase.h"
#include "Services/Clock.h"
#include "Services/WholeFile.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <map>
#include <mutex>

#include <fcntl.h>
#include <unistd.h>

static bool IsFolderWritable(const std::string& path)
{
    const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
    return faccessat(AT_FDCWD, folder.c_str(), W_OK, AT_EACCESS) == 0;
}

/// An open file, and what has been counted but is not in it yet.
class [[gnu::visibility("hidden")]] UsageLog::Counters
{
public:
    std::mutex lock; // held by whoever calls an operation

    /// Opens the file; null, and the reason, when it does not serve.
    static std::unique_ptr<Counters> OpenOrNull(const std::string& path, std::string& reason);
    ~Counters();

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

private:
    static constexpr unsigned int interval = 100; // ms

    UsageDatabase database;
    bool hasLasting = false;
    std::map<WString, long long> gathered;
    unsigned int gatheredSince = 0; // ticks of the clock

    bool TryAddGathered(bool waits);
};

std::unique_ptr<UsageLog::Counters> UsageLog::Counters::OpenOrNull(const std::string& path, std::string& reason)
{
    auto opened = std::make_unique<Counters>();
    if (opened->database.TryOpen(path))
        return opened;
    reason = opened->database.GetError();
    opened = std::make_unique<Counters>();
    if (IsFolderWritable(path) || !opened->database.TryOpenForReading(path))
        opened.reset();
    return opened;
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

void UsageLog::Open(const std::string& path)
{
    counters.reset();
    std::string reason;
    counters = Counters::OpenOrNull(path, reason);
    if (!counters)
        WholeFile::Fail(path, WString::FromUtf8(reason));
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
