#include "Signals.h"

#include "Text/Abort.h"

#include <atomic>
#include <unistd.h>

static constexpr int signals_lc[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

static std::atomic<int> pending_lc{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler sets it");

/// A signal that comes just before a call that waits would not end the wait: one that has been heard is followed by
/// others, a second apart.
static void Remind(int)
{
    if (pending_lc != 0)
        alarm(1);
}

/// The first signal counts; but an interrupt may turn out to be for a command alone.
static void Request(int signal)
{
    int former = 0;
    if (!pending_lc.compare_exchange_strong(former, signal) && former == SIGINT)
        pending_lc = signal;
    Abort::Request();
    Remind(signal);
}

/// Without SA_RESTART: the signal ends what waits.
static void Take(int signal, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
}

void Signals::Catch()
{
    Take(SIGALRM, Remind);
    Take(SIGXFSZ, [](int) {}); // a file beyond its limit is one that cannot be written
    for (const int signal : signals_lc) {
        struct sigaction former = {};
        sigaction(signal, nullptr, &former);
        if (former.sa_handler != SIG_IGN || signal == SIGPIPE)
            Take(signal, Request);
    }
}

void Signals::WakeAtWindowChanges()
{
    Take(SIGWINCH, [](int) {});
}

int Signals::GetPending() noexcept
{
    return pending_lc;
}

void Signals::ForgetInterrupt() noexcept
{
    int interrupt = SIGINT;
    pending_lc.compare_exchange_strong(interrupt, 0);
}

void Signals::EndByPending()
{
    const int signal = pending_lc;
    if (signal == 0)
        return;
    Take(signal, SIG_DFL);
    raise(signal);
}

Signals::Block::Block()
{
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : signals_lc)
        sigaddset(&blocked, signal);
    sigaddset(&blocked, SIGWINCH);
    pthread_sigmask(SIG_BLOCK, &blocked, &former);
}

Signals::Block::~Block()
{
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

Signals::Shelter::Shelter() : wasRequested(Abort::IsRequested())
{
    Abort::Clear();
}

Signals::Shelter::~Shelter()
{
    if (wasRequested)
        Abort::Request();
}
