#include "Services/FileDescriptor.h"

#include "Text/Abort.h"

#include <cerrno>
#include <chrono>
#include <thread>

#include <sys/file.h>

bool FileDescriptor::TryLock(int limit) const
{
    constexpr int step = 5; // ms
    for (int waited = 0; flock(descriptor, LOCK_EX | LOCK_NB) != 0; waited += step) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || waited >= limit || Abort::IsRequested())
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(step));
    }
    return true;
}
