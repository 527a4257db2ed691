#include "Signals.h"

#include "Text/Abort.h"

#include <atomic>

static constexpr int signals_lc[] = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

static std::atomic<int> pending_lc{0};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler sets it");

/// The first signal counts; but an interrupt may turn out to be for a command alone.
static void Request(int signal)
{
    int former = 0;
    if (!pending_lc.compare_exchange_strong(former, signal) && former == SIGINT)
        pending_lc = signal;
    Abort::Request();
}

void Signals::Catch()
{
    for (const int signal : signals_lc) {
        struct sigaction former = {};
        sigaction(signal, nullptr, &former);
        if (former.sa_handler == SIG_IGN && signal != SIGPIPE)
            continue;
        struct sigaction action = {};
        action.sa_handler = Request; // without SA_RESTART: opening a pipe ends too
        sigemptyset(&action.sa_mask);
        sigaction(signal, &action, nullptr);
    }
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
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    sigemptyset(&action.sa_mask);
    sigaction(signal, &action, nullptr);
    raise(signal);
}

Signals::Block::Block()
{
    sigset_t blocked;
    sigemptyset(&blocked);
    for (const int signal : signals_lc)
        if (signal != SIGPIPE)
            sigaddset(&blocked, signal);
    pthread_sigmask(SIG_BLOCK, &blocked, &former);
}

Signals::Block::~Block()
{
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
}
