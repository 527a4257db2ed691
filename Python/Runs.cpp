#include "Runs.h"

#include "Text/Abort.h"

#include <chrono>
#include <csignal>
#include <thread>

namespace {
struct Counts
{
    unsigned int running = 0;
    unsigned int longRuns = 0;
};
} // namespace

static Counts all_lc;
static thread_local Counts own_lc; // what of it this thread runs
static std::thread::id ending_lc;  // the thread that ends Python, once it does
static struct sigaction former_lc = {};

static void OnInterrupt(int signal)
{
    Abort::Request();
    former_lc.sa_handler(signal); // Python's, which makes it a KeyboardInterrupt
}

static bool IsCaught(const struct sigaction& action)
{
    return (action.sa_flags & SA_SIGINFO) == 0 && action.sa_handler == OnInterrupt;
}

/// Leaves a handler alone that is none of Python's usual form, or whose user wants no interrupt.
static void CatchInterrupt()
{
    struct sigaction current = {};
    sigaction(SIGINT, nullptr, &current);
    if (IsCaught(current)) // a library has saved it during a run, and given it back later
        return;
    former_lc = current;
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
    if (IsCaught(current))
        sigaction(SIGINT, &former_lc, nullptr);
}

static void BeginInterrupts()
{
    Abort::Clear();
    CatchInterrupt();
}

static void EndInterrupts()
{
    ReleaseInterrupt();
    Abort::Clear();
}

Running::Running()
{
    if (ending_lc != std::thread::id() && ending_lc != std::this_thread::get_id()) {
        PyErr_SetString(PyExc_RuntimeError, "Python is ending");
        throw py::error_already_set();
    }
    ++all_lc.running;
    ++own_lc.running;
}

Running::~Running()
{
    --all_lc.running;
    --own_lc.running;
}

void Running::RequireNone(const char* what)
{
    if (all_lc.running == 0)
        return;
    PyErr_Format(PyExc_RuntimeError, "%s while an expression or a command runs", what);
    throw py::error_already_set();
}

LongRun::LongRun()
{
    if (all_lc.longRuns++ == 0)
        BeginInterrupts();
    ++own_lc.longRuns;
    python = PyEval_SaveThread();
}

LongRun::~LongRun()
{
    PyEval_RestoreThread(python);
    --own_lc.longRuns;
    if (--all_lc.longRuns == 0)
        EndInterrupts();
}

void LongRun::Abort() noexcept
{
    if (all_lc.longRuns > 0)
        ::Abort::Request();
}

void LongRun::EndAll()
{
    constexpr int patience = 400; // of 5 ms
    ending_lc = std::this_thread::get_id();
    for (int i = 0; i < patience && all_lc.running > 0; ++i) {
        Abort();
        const py::gil_scoped_release others;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
}

void LongRun::LeaveOtherThreads() noexcept
{
    const bool others = all_lc.longRuns > own_lc.longRuns;
    all_lc = own_lc;
    if (others && own_lc.longRuns == 0)
        EndInterrupts();
}
