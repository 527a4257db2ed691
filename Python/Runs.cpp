#include "Runs.h"

#include "Text/Abort.h"

#include <chrono>
#include <csignal>
#include <thread>

static unsigned int running_lc = 0;
static unsigned int longRuns_lc = 0;
static bool isEnding_lc = false;
static struct sigaction former_lc = {};

static void OnInterrupt(int signal)
{
    Abort::Request();
    former_lc.sa_handler(signal); // Python's, which makes it a KeyboardInterrupt
}

/// Leaves a handler alone that is none of Python's usual form, or whose user wants no interrupt.
static void CatchInterrupt()
{
    sigaction(SIGINT, nullptr, &former_lc);
    if ((former_lc.sa_flags & SA_SIGINFO) != 0 || former_lc.sa_handler == SIG_DFL || former_lc.sa_handler == SIG_IGN)
        return;
    struct sigaction action = former_lc;
    action.sa_handler = OnInterrupt;
    sigaction(SIGINT, &action, nullptr);
}

/// Unless somebody has put another handler in the place of this one.
static void ReleaseInterrupt()
{
    struct sigaction current = {};
    sigaction(SIGINT, nullptr, &current);
    if ((current.sa_flags & SA_SIGINFO) == 0 && current.sa_handler == OnInterrupt)
        sigaction(SIGINT, &former_lc, nullptr);
}

Running::Running()
{
    ++running_lc;
}

Running::~Running()
{
    --running_lc;
}

void Running::RequireNone(const char* what)
{
    if (running_lc == 0)
        return;
    PyErr_Format(PyExc_RuntimeError, "%s while an expression or a command runs", what);
    throw py::error_already_set();
}

LongRun::LongRun()
{
    if (isEnding_lc) {
        PyErr_SetString(PyExc_RuntimeError, "Python is ending");
        throw py::error_already_set();
    }
    if (longRuns_lc++ == 0)
        CatchInterrupt();
    release.emplace();
}

LongRun::~LongRun()
{
    release.reset();
    if (--longRuns_lc == 0) {
        ReleaseInterrupt();
        ::Abort::Clear();
    }
}

void LongRun::Abort() noexcept
{
    if (longRuns_lc > 0)
        ::Abort::Request();
}

void LongRun::EndAll()
{
    constexpr int patience = 400; // of 5 ms
    isEnding_lc = true;
    for (int i = 0; i < patience && running_lc > 0; ++i) {
        Abort();
        const py::gil_scoped_release others;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}
