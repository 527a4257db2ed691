#pragma once

#include "Support/Patience.h"

#include <stdexcept>
#include <utility>

/// A process that runs a function and ends, with exit status 0 when the function returns true. Ended for good by the
/// destructor.
class ChildProcess
{
public:
    template <typename Function>
    explicit ChildProcess(const Function& run) : id(fork())
    {
        if (id < 0)
            throw std::runtime_error("no child process");
        if (id == 0)
            RunAndEnd(run);
    }
    ~ChildProcess()
    {
        if (id > 0) {
            Kill();
            Wait();
        }
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    pid_t GetId() const { return id; }
    void Kill() const { kill(id, SIGKILL); }
    /// True when the function returned true.
    bool Wait() { return WaitForExit(std::exchange(id, -1)) == 0; }

private:
    pid_t id;

    template <typename Function>
    [[noreturn]] static void RunAndEnd(const Function& run) noexcept // an exception is the end as well
    {
        _exit(run() ? 0 : 1);
    }
};

/// Runs the function in a process without the superuser's rights, to which permissions apply.
template <typename Function>
bool RunUnprivileged(Function&& run)
{
    constexpr uid_t nobody = 65534;
    return ChildProcess([&] { return (geteuid() != 0 || seteuid(nobody) == 0) && run(); }).Wait();
}
