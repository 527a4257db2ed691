#pragma once

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

/// Waits until the condition holds. Gives up after a time that only something that hangs can take, and returns false.
template <typename Condition>
bool WaitUntil(Condition&& condition)
{
    constexpr int patience = 100'000; // milliseconds
    for (int waited = 0; waited < patience; ++waited) {
        if (condition())
            return true;
        usleep(1000);
    }
    return false;
}

/// The status with which the process ended; one that does not end is killed.
inline int WaitForExit(pid_t id)
{
    int status = -1;
    if (!WaitUntil([&] { return waitpid(id, &status, WNOHANG) != 0; })) {
        kill(id, SIGKILL);
        waitpid(id, &status, 0);
    }
    return status;
}
