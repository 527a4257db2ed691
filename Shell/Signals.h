#pragma once

#include <csignal>

/// The signals that end the shell. They do so in order: each is an abort request, which ends what is running, and when
/// the rest is done the shell ends itself by the signal, as its caller expects.
namespace Signals {
/// Takes them from now on: the interrupt (Ctrl-C), SIGTERM, SIGHUP, and SIGPIPE, which says that a reader went away.
/// Those that the caller has set to be ignored, as nohup does, stay ignored.
void Catch();
/// Lets a change of the window's size interrupt what waits.
void WakeAtWindowChanges();
/// The signal that is to end the shell; 0 when there was none.
int GetPending() noexcept;
/// The interrupt has ended a command, and is not to end the shell.
void ForgetInterrupt() noexcept;
/// Ends the process by the signal that is pending; returns when there is none.
void EndByPending();

/// Keeps the signals, and that of a window of another size, off while it lives.
class Block
{
public:
    Block();
    ~Block();
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;
    /// The signal mask without them, for a wait that lets them in.
    const sigset_t& GetFormerMask() const noexcept { return former; }

private:
    sigset_t former;
};

/// Lets work be done undisturbed while it lives: the signals wait, and so does the abort they have requested.
class Shelter
{
public:
    Shelter();
    ~Shelter();
    Shelter(const Shelter&) = delete;
    Shelter& operator=(const Shelter&) = delete;

private:
    const Block block;
    const bool wasRequested;
};
} // namespace Signals
