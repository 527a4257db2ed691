#pragma once

#include <pybind11/pybind11.h>

namespace py = pybind11;

// What runs in this process, counted under Python's lock.

/// An expression or a command on its way. What everything shares (functions, the open bench) changes while there is
/// none. Throws RuntimeError when Python is about to end, but to the thread that ends it.
class Running
{
public:
    Running();
    ~Running();
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    /// Throws RuntimeError while one lives.
    static void RequireNone(const char* what);
};

/// Work that may take long: the other threads of Python go on meanwhile, and an interrupt (Ctrl-C) ends it. Throws what
/// Running throws.
class LongRun
{
public:
    LongRun();
    ~LongRun();
    LongRun(const LongRun&) = delete;
    LongRun& operator=(const LongRun&) = delete;

    /// Ends all of them, as an interrupt does.
    static void Abort() noexcept;
    /// Ends all that other threads run, for good, and waits: Python would end those threads in the middle.
    static void EndAll();
    /// In a process that was forked off, where no other thread lives on.
    static void LeaveOtherThreads() noexcept;

private:
    const Running running;
    PyThreadState* python = nullptr; // of this thread, which has let go of it
};
