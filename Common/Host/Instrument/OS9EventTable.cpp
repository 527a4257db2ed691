#include "Instrument/OS9EventTable.h"

#include "Services/FileDescriptor.h"

#include <cerrno>
#include <cstdlib>
#include <mutex>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace {

// A process of another word size would see another table: its size tells it apart.
constexpr std::uint32_t layoutNumber = 0x05900000 + sizeof(OS9EventTable);

constexpr int longestWait = 1000; // ms until another process has looked

std::string GetSegmentName()
{
    const char* name = std::getenv("LABSH_EVENTS");
    return name && *name ? std::string("/") + name : "/labsh-events-" + std::to_string(geteuid());
}

/// Brings a new segment to its size; false for one of another user or another layout.
bool TryPrepareSize(int segment)
{
    struct stat status = {};
    if (fstat(segment, &status) != 0 || status.st_uid != geteuid())
        return false;
    if (status.st_size == 0) // reserved rather than merely sized: lack of memory is an error here, not a signal later
        return posix_fallocate(segment, 0, sizeof(OS9EventTable)) == 0;
    return status.st_size == sizeof(OS9EventTable);
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
class SegmentLock
{
public:
    explicit SegmentLock(const FileDescriptor& segment) : segment(segment), held(segment.TryLock(longestWait)) {}
    ~SegmentLock() { flock(segment.Get(), LOCK_UN); }
    SegmentLock(const SegmentLock&) = delete;
    SegmentLock& operator=(const SegmentLock&) = delete;

    bool IsHeld() const { return held; }

private:
    const FileDescriptor& segment;
    const bool held;
};

OS9EventTable* Map()
{
    const FileDescriptor segment(shm_open(GetSegmentName().c_str(), O_RDWR | O_CREAT, 0600));
    if (!segment.IsOpen())
        return nullptr;
    const SegmentLock lock(segment);
    if (!lock.IsHeld() || !TryPrepareSize(segment.Get()))
        return nullptr;
    void* memory = mmap(nullptr, sizeof(OS9EventTable), PROT_READ | PROT_WRITE, MAP_SHARED, segment.Get(), 0);
    if (memory == MAP_FAILED)
        return nullptr;
    auto* table = static_cast<OS9EventTable*>(memory);
    if (table->layout == 0)
        MakeMutex(*table);
    if (table->layout == layoutNumber)
        return table;
    munmap(memory, sizeof(OS9EventTable));
    return nullptr;
}

} // namespace

OS9EventTable* OS9EventTable::Get()
{
    static std::mutex lock;
    static OS9EventTable* table = nullptr;
    const std::lock_guard guard(lock);
    if (!table)
        table = Map();
    return table;
}

OS9EventTableLock::OS9EventTableLock(OS9EventTable& table) noexcept : table(table)
{
    if (pthread_mutex_lock(&table.mutex) == EOWNERDEAD)
        pthread_mutex_consistent(&table.mutex);
}

OS9EventTableLock::~OS9EventTableLock()
{
    pthread_mutex_unlock(&table.mutex);
}
