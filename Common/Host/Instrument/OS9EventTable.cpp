#include "Instrument/OS9EventTable.h"

#include "Services/FileDescriptor.h"
#include "Services/WholeFile.h"
#include "Text/Abort.h"
#include "Text/WString.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace {

// A process of another word size would see another table: its size tells it apart.
constexpr std::uint32_t layoutNumber = 0x05A00000 + sizeof(OS9EventTable);

constexpr int longestWait = 2000; // ms for a lock that others hold for microseconds

constexpr wchar_t notGivenBack[] =
    L"its lock has not been given back for 2 s; end the process that holds it, or remove that file";

std::string GetSegmentName()
{
    const char* name = std::getenv("LABSH_EVENTS");
    return name && *name ? std::string("/") + name : "/labsh-events-" + std::to_string(geteuid());
}

[[noreturn]] void FailAsForeign(const std::string& file, uid_t owner)
{
    WholeFile::Fail(
        file, WString::Format(L"it is the table of events of the user %u; set LABSH_EVENTS to another name", owner));
}

[[noreturn]] void FailAsDamaged(const std::string& file)
{
    WholeFile::Fail(file, L"it is damaged, or the table of events of another version; remove that file");
}

/// With errno of what refused it.
[[noreturn]] void FailToOpen(const std::string& file)
{
    const int reason = errno;
    struct stat status = {};
    if (reason == EACCES && stat(file.c_str(), &status) == 0 && status.st_uid != geteuid())
        FailAsForeign(file, status.st_uid);
    WholeFile::Fail(file, reason);
}

/// Brings a new segment to its size, reserved rather than merely sized: lack of memory is an error here, not a signal
/// later.
void PrepareSize(const FileDescriptor& segment, const std::string& file)
{
    struct stat status = {};
    if (fstat(segment.Get(), &status) != 0)
        WholeFile::Fail(file, errno);
    if (status.st_uid != geteuid())
        FailAsForeign(file, status.st_uid);
    if (status.st_size == 0) {
        if (const int error = posix_fallocate(segment.Get(), 0, sizeof(OS9EventTable)); error != 0)
            WholeFile::Fail(file, error);
    } else if (status.st_size != sizeof(OS9EventTable)) {
        FailAsDamaged(file);
    }
}

/// Completes a table that is all zero: the memory of a new segment is, and so free slots are.
void MakeMutex(OS9EventTable& table)
{
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    pthread_mutex_init(&table.mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    table.layout = layoutNumber;
}

/// Lets one process at a time look whether the table is complete. A mapping keeps the open file, so closing the
/// descriptor would not unlock it.
class OpeningLock
{
public:
    OpeningLock(const FileDescriptor& segment, const std::string& file) : segment(segment)
    {
        if (segment.TryLock(longestWait))
            return;
        Abort::ThrowIfRequested();
        WholeFile::Fail(file, notGivenBack);
    }
    ~OpeningLock() { flock(segment.Get(), LOCK_UN); }
    OpeningLock(const OpeningLock&) = delete;
    OpeningLock& operator=(const OpeningLock&) = delete;

private:
    const FileDescriptor& segment;
};

/// Waits in steps, between which an abort is noticed. They are short, so that a clock that is set back does no harm.
int WaitFor(pthread_mutex_t& mutex)
{
    constexpr long step = 20'000'000; // ns
    constexpr long second = 1'000'000'000;
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(longestWait);
    int result = ETIMEDOUT;
    while (result == ETIMEDOUT && std::chrono::steady_clock::now() < end) {
        Abort::ThrowIfRequested();
        timespec limit = {};
        clock_gettime(CLOCK_REALTIME, &limit);
        limit.tv_nsec += step;
        if (limit.tv_nsec >= second) {
            limit.tv_nsec -= second;
            ++limit.tv_sec;
        }
        result = pthread_mutex_timedlock(&mutex, &limit);
    }
    return result;
}

/// Whether the segment has its size, and that many names at least: without one no new process finds it.
bool IsWhole(const FileDescriptor& segment, nlink_t names)
{
    struct stat status = {};
    return fstat(segment.Get(), &status) == 0 && status.st_size == sizeof(OS9EventTable) && status.st_nlink >= names;
}

} // namespace

OS9EventSegment::OS9EventSegment()
    : file("/dev/shm" + GetSegmentName()),
      process(getpid()),
      descriptor(shm_open(GetSegmentName().c_str(), O_RDWR | O_CREAT, 0600))
{
    if (!descriptor.IsOpen())
        FailToOpen(file);
    const OpeningLock lock(descriptor, file);
    PrepareSize(descriptor, file);
    void* memory = mmap(nullptr, sizeof *table, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor.Get(), 0);
    if (memory == MAP_FAILED)
        WholeFile::Fail(file, errno);
    table = static_cast<OS9EventTable*>(memory);
    if (table->layout == 0)
        MakeMutex(*table);
    if (table->layout == layoutNumber)
        return;
    munmap(memory, sizeof *table);
    FailAsDamaged(file);
}

OS9EventSegment::~OS9EventSegment()
{
    munmap(table, sizeof *table);
}

bool OS9EventSegment::IsWhole() const noexcept
{
    return ::IsWhole(descriptor, 0);
}

/// Whether this is still the table: nobody has removed or cut off the file, and this process has not come by a fork
/// from the one that opened it.
bool OS9EventSegment::IsCurrent() const noexcept
{
    return process == getpid() && ::IsWhole(descriptor, 1);
}

void OS9EventSegment::Lock()
{
    int result = pthread_mutex_trylock(&table->mutex);
    if (result == EBUSY)
        result = WaitFor(table->mutex);
    if (result == EOWNERDEAD)
        result = pthread_mutex_consistent(&table->mutex);
    if (result == ETIMEDOUT) // where the system does not unlock for a process that died, or one that is held
        WholeFile::Fail(file, notGivenBack);
    if (result != 0)
        FailAsDamaged(file);
}

bool OS9EventSegment::TryLock() noexcept
{
    const int result = pthread_mutex_trylock(&table->mutex);
    return result == 0 || (result == EOWNERDEAD && pthread_mutex_consistent(&table->mutex) == 0);
}

void OS9EventSegment::Unlock() noexcept
{
    pthread_mutex_unlock(&table->mutex);
}

/// The row's counts belong to whoever has locked the byte of its number in the file, which ends with the process. This
/// lock is that of the open file, and so of the process, in which no one else opens it.
bool OS9EventSegment::TryLockRow(unsigned int row, short type) noexcept
{
    struct flock range = {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = row;
    range.l_len = 1;
    return fcntl(descriptor.Get(), F_OFD_SETLK, &range) == 0;
}

void OS9EventSegment::ClearRow(unsigned int row) noexcept
{
    for (std::atomic<std::int32_t>& count : table->references[row])
        count.store(0, std::memory_order_relaxed);
}

OS9EventTable::References& OS9EventSegment::GetOwnReferences()
{
    for (unsigned int row = 0; ownRow == OS9EventTable::processCapacity; ++row) {
        if (row == OS9EventTable::processCapacity)
            WholeFile::Fail(
                file, WString::Format(L"%u other processes refer to events; there is room for no more", row));
        if (TryLockRow(row, F_WRLCK)) {
            ClearRow(row);
            ownRow = row;
        } else if (errno != EAGAIN && errno != EACCES) {
            WholeFile::Fail(file, errno);
        }
    }
    return table->references[ownRow];
}

void OS9EventSegment::TryGiveRowBack() noexcept
{
    if (!TryLock())
        return; // the row stays for what comes
    const auto isUnused = [](const std::atomic<std::int32_t>& count) { return count == 0; };
    if (ownRow != OS9EventTable::processCapacity && std::ranges::all_of(table->references[ownRow], isUnused)) {
        TryLockRow(ownRow, F_UNLCK);
        ownRow = OS9EventTable::processCapacity;
    }
    Unlock();
}

void OS9EventSegment::ForgetEndedProcesses() noexcept
{
    for (unsigned int row = 0; row < OS9EventTable::processCapacity; ++row) {
        if (row == ownRow || !TryLockRow(row, F_WRLCK))
            continue;
        ClearRow(row);
        TryLockRow(row, F_UNLCK);
    }
}

std::shared_ptr<OS9EventSegment> OS9EventSegment::Get()
{
    static std::mutex lock;
    static std::shared_ptr<OS9EventSegment> segment;
    const std::lock_guard guard(lock);
    if (!segment || !segment->IsCurrent())
        segment = std::make_shared<OS9EventSegment>();
    return segment;
}
