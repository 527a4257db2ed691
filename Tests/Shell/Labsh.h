#pragma once

#include "Support/Patience.h"
#include "Support/TemporaryFolder.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <spawn.h>

/// A run of labsh in a new working folder, with the data folder "data" in it.
class Labsh
{
public:
    explicit Labsh(std::vector<std::string> arguments, const std::string& input = "")
    {
        Start(std::move(arguments), input);
    }
    /// For files that are to be there at the start.
    Labsh() = default;
    ~Labsh()
    {
        if (id > 0) {
            kill(id, SIGKILL);
            Wait();
        }
    }
    Labsh(const Labsh&) = delete;
    Labsh& operator=(const Labsh&) = delete;

    void Start(std::vector<std::string> arguments, const std::string& input = "");
    /// Without the data folder.
    void StartAlone(std::vector<std::string> arguments, const std::string& input = "");
    void Send(int signal) const { kill(id, signal); }
    bool IsRunning() const
    {
        siginfo_t ended = {};
        return waitid(P_PID, static_cast<id_t>(id), &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid == 0;
    }
    /// The exit status; 128 and the number of a signal that ended the process.
    int Wait();
    int Run(std::vector<std::string> arguments, const std::string& input = "")
    {
        Start(std::move(arguments), input);
        return Wait();
    }

    std::string GetOutput() const { return folder.Read("output"); }
    std::string GetErrors() const { return folder.Read("errors"); }
    /// Output, errors and exit status together.
    std::string Finish() { return Describe(Wait()); }
    std::string Describe(int status) const { return GetOutput() + GetErrors() + "exit " + std::to_string(status); }

    const TemporaryFolder folder;

private:
    pid_t id = 0;
};

inline void Labsh::Start(std::vector<std::string> arguments, const std::string& input)
{
    arguments.insert(arguments.begin(), {"--data", "data"});
    StartAlone(std::move(arguments), input);
}

inline void Labsh::StartAlone(std::vector<std::string> arguments, const std::string& input)
{
    folder.Write("input", input);
    arguments.insert(arguments.begin(), LABSH_FILE);
    std::vector<char*> pointers(arguments.size() + 1); // ends with a null pointer
    std::ranges::transform(arguments, pointers.begin(), [](std::string& argument) { return argument.data(); });

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.GetPath().c_str());
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "input", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "output", O_WRONLY | O_CREAT | O_TRUNC, 0666);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "errors", O_WRONLY | O_CREAT | O_TRUNC, 0666);
    posix_spawnattr_t attributes; // whoever runs the tests may ignore the signals, and labsh would too
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);
    const int error = posix_spawn(&id, LABSH_FILE, &actions, &attributes, pointers.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("labsh cannot be started");
}

inline int Labsh::Wait()
{
    const int status = WaitForExit(std::exchange(id, 0));
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}
