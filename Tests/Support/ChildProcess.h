#pragma once

#include <csignal>
#include <stdexcept>
#include <utility>

#include <sys/wait.h>
#include <unistd.h>

/// A process that runs a function and ends, with exit status 0 when the function returns true. Ended for good by the
/// destructor.
class ChildProcess
{
public:
    template <typename Function>
    explicit ChildProcess(Function&& run) : id(fork())
    {
        if (id < 0)
            throw std::runtime_error("no child process");
        if (id == 0)
            _exit(RunGuarded(std::forward<Function>(run)) ? 0 : 1);
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
    bool Wait()
    {
        int status = -1;
        waitpid(std::exchange(id, -1), &status, 0);
        return status == 0;
    }

private:
    pid_t id;

    template <typename Function>
    static bool RunGuarded(Function&& run)
    {
        try {
            return run();
        } catch (...) {
            return false;
        }
    }
};

/// Runs the function in a process without the superuser's rights, to which permissions apply.
template <typename Function>
bool RunUnprivileged(Function&& run)
{
    constexpr uid_t nobody = 65534;
    return ChildProcess([&] { return (geteuid() != 0 || seteuid(nobody) == 0) && run(); }).Wait();
}
