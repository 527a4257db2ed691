#include "Bench.h"

#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "Text/Abort.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace fs = std::filesystem;

// The folder of the bench, once there is one. It is kept to the end, for so long does the host open files.
static constinit const std::string* fence_lc = nullptr;

/// The file that is opened in place of the one that was named; none when that is refused.
static std::string FindWithin(const std::string& path, bool isReading)
{
    if (!fence_lc)
        return path;
    if (path.find("..") != path.npos)
        return "";
    if (!path.starts_with('/'))
        return *fence_lc + "/" + path;
    const bool isAllowed = path.starts_with(*fence_lc + "/") || (isReading && path.starts_with(SOURCE_DIR "/"));
    return isAllowed ? path : "";
}

/// Stands in front of the C library's function for the program and all of the host.
extern "C" [[gnu::visibility("default")]] int open64(const char* path, int flags, ...)
{
    static const auto openFile = reinterpret_cast<decltype(&open64)>(dlsym(RTLD_NEXT, "open64"));
    const std::string found = FindWithin(path, (flags & (O_WRONLY | O_RDWR | O_CREAT)) == 0);
    if (found.empty()) {
        errno = EACCES;
        return -1;
    }
    return openFile(found.c_str(), flags, 0600);
}

unsigned int Bench::PatientClock::GetTickCount()
{
    constexpr unsigned int patience = 2'000;
    if (++looks > patience)
        Abort::Request();
    return ticks;
}

void Bench::PatientClock::Sleep(unsigned int milliseconds)
{
    ticks += milliseconds;
    GetTickCount();
}

void Bench::PatientClock::Reset()
{
    ticks = 0;
    looks = 0;
}

static WStringArray GetEvents()
{
    WStringArray events;
    OS9EventManager::GetNames(events);
    return events;
}

Bench::Bench(std::string profile) : profile(std::move(profile))
{
    fence_lc = new std::string(folder.GetPath());
    Clock::Replace(&clock);
    // A table of events that no other process finds, and that goes away however this one ends.
    const std::string events = "labsh-fuzz-" + std::to_string(getpid());
    setenv("LABSH_EVENTS", events.c_str(), 1);
    GetEvents();
    shm_unlink(("/" + events).c_str());
    Start();
}

Bench::~Bench()
{
    Clock::Replace(nullptr);
}

void Bench::Restore()
{
    Rewind();
    if (IsTouched()) // else the time is better spent on inputs
        Start();
}

void Bench::Rewind()
{
    Abort::Clear();
    clock.Reset();
    System::random.Seed(1);
}

Bench::Sight Bench::Look() const
{
    Sight sight;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.GetPath())) {
        const std::string name = entry.path().filename();
        if (!name.starts_with("Usage.db") && name != "ErrorLog.txt")
            sight[name] = {entry.is_regular_file() ? entry.file_size() : 0, entry.last_write_time()};
    }
    return sight;
}

bool Bench::IsTouched() const
{
    WStringArray counters;
    System::usage.GetNames(counters);
    const auto isOwn = [](const WString& name) { return name.StartsWith(L"Command.", false); };
    return Look() != original || !GetEvents().IsEmpty() || !std::ranges::all_of(counters, isOwn);
}

void Bench::Start()
{
    for (const fs::directory_entry& entry : fs::directory_iterator(folder.GetPath()))
        fs::remove_all(entry.path());
    for (const WString& event : GetEvents())
        OS9EventManager::TryDelete(event);
    System::Start(folder.GetPath(), profile);
    for (const wchar_t* name : {L"InfoDate", L"InfoTime", L"UpTime"}) // what the machine's clock says
        System::status.AddLive(name, ST_String, [] { return L"1"; });
    original = Look();
}
