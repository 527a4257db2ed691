#include "Instrument/System.h"

#include "Services/Clock.h"
#include "Services/DateTime.h"
#include "Services/ProcessTable.h"
#include "Services/WholeFile.h"
#include "Text/HostError.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <limits>

static std::string dataFolder_lc;
static bool mayChange_lc = false;
ConfigFileData System::config;
StatusTable System::status;
UsageLog System::usage;
LogFile System::errorLog(L"", L"ErrorLog", 0x100000);
Rand System::random;

namespace {

constexpr const char* profileFiles_lc[] = {"Config.ini", "Status.ini"};

void MakeFolder(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        WholeFile::Fail(folder, error.value());
}

void CopyIfMissing(const std::string& source, const std::string& target)
{
    std::error_code error;
    if (std::filesystem::exists(target, error) || error) // what cannot be looked for is reported when it is read
        return;
    const WholeFile::Lock lock(target);
    if (std::filesystem::exists(target, error)) // another process was faster
        return;
    std::string text;
    if (const int errorNumber = WholeFile::Read(source, text); errorNumber != 0)
        WholeFile::Fail(source, errorNumber);
    WholeFile::Write(target, text);
}

void AddLiveItems(StatusTable& status)
{
    status.AddLive(L"InfoDate", ST_String, [] {
        const int date = DateTime::Now().ToDateInt();
        return WString::Format(L"%04d-%02d-%02d", date / 10000, date / 100 % 100, date % 100);
    });
    status.AddLive(L"InfoTime", ST_String, [] {
        const int time = DateTime::Now().ToTimeInt();
        return WString::Format(L"%02d:%02d:%02d", time / 10000, time / 100 % 100, time % 100);
    });
    const auto start = std::chrono::steady_clock::now();
    status.AddLive(L"UpTime", ST_Double, [start] {
        const std::chrono::duration<double> upTime = std::chrono::steady_clock::now() - start;
        return WString::Format(L"%.3f", upTime.count());
    });
}

/// Does a step of the start. What a file does to it is reported, with what follows from that, and the start goes on.
template <typename Step>
bool TryTo(WStringArray& reports, const wchar_t* consequence, const Step& step)
try {
    step();
    return true;
} catch (const HostException& failure) {
    if (!IsHostError(failure, HostError::FileError))
        throw;
    reports.Add(failure.GetMessage() + L"; " + consequence);
    return false;
}

/// Reports the lines of a data file that are not understood: of a file that is mostly damaged not all.
template <typename Data>
void AddFaults(WStringArray& reports, const Data& data)
{
    constexpr std::size_t most = 10;
    WStringArray faults;
    data.GetFaults(faults);
    for (std::size_t i = 0; i < std::min(faults.Count(), most); ++i)
        reports.Add(faults[i] + L"; the line stays as it is");
    if (faults.Count() > most)
        reports.Add(WString::Format(L"%s, and %u more lines", faults[most], faults.Count() - most - 1));
}

void SeedRandom(const std::string& configFile)
{
    constexpr unsigned int highest = std::numeric_limits<unsigned int>::max();
    System::config.GetMetaData().Update(L"Random", L"Seed", ConfigDataType::UInt,
        L"Makes the random numbers repeatable; drawn by the system when absent", 0, highest, 0);
    if (!System::config.Contains(L"Random", L"Seed"))
        return;
    unsigned int seed = 0;
    if (!System::config.TryGetUInt(L"Random", L"Seed", seed, 0, highest))
        WholeFile::Fail(configFile, L"[Random] Seed is no whole number from 0 to 4294967295");
    System::random.Seed(seed);
}

/// `[Log] <name>`; a log that the configuration does not name stays as it is.
bool IsLogToBeEnabled(const WString& name, bool enabled)
{
    bool value = enabled;
    System::config.GetMetaData().Update(
        L"Log", name, ConfigDataType::Bool, (L"Write " + name + L".txt").ToCString(), 0, 1, enabled);
    System::config.TryGetBool(L"Log", name, value);
    return value;
}

} // namespace

WStringArray System::Start(const std::string& dataFolder, const std::string& profileFolder)
{
    constexpr const wchar_t* unmade = L"the values of the profile are used, and cannot be saved";
    const std::string folder = std::filesystem::absolute(dataFolder).string();
    const auto get = [&](const char* name) { return folder + "/" + name; };
    WStringArray reports;
    if (TryTo(reports, unmade, [&] { MakeFolder(folder); })) {
        for (const char* name : profileFiles_lc) {
            TryTo(reports, unmade, [&] { CopyIfMissing(profileFolder + "/" + name, get(name)); });
            WholeFile::CleanUp(get(name));
        }
        TryTo(reports, L"nothing is counted", [&] {
            if (const WString report = usage.Open(get("Usage.db")); !report.IsEmpty())
                reports.Add(report);
        });
    }
    TryTo(reports, L"there are no settings until it can be read",
        [&] { config.Load(get("Config.ini"), profileFolder + "/Config.ini"); });
    TryTo(reports, L"there are no items until it can be read",
        [&] { status.Load(get("Status.ini"), profileFolder + "/Status.ini"); });
    AddFaults(reports, config);
    AddFaults(reports, status);
    AddLiveItems(status);
    TryTo(reports, L"the system draws one", [&] { SeedRandom(get("Config.ini")); });
    dataFolder_lc = folder;
    mayChange_lc = !WholeFile::IsProtected(get("Config.ini"));
    errorLog.SetEnabled(true);
    LogFile::Attach(mayChange_lc ? folder : "", IsLogToBeEnabled); // or their owner could not write to them
    return reports;
}

bool System::MayChange() noexcept
{
    return mayChange_lc;
}

const std::string& System::GetDataFolder() noexcept
{
    return dataFolder_lc;
}

int System::GetMatchingProcess(const wchar_t* command, const wchar_t* commandLine)
{
    return ProcessTable::FindMatching(command, commandLine);
}
