#pragma once

#include "Services/Clock.h"

/// The host's clock for the length of a scope; it stands still but for waits and for what a test adds.
class ManualClock : public Clock
{
public:
    explicit ManualClock(unsigned int start = 0) : ticks(start) { Replace(this); }
    ~ManualClock() override { Replace(nullptr); }
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    unsigned int GetTickCount() override { return ticks; }
    void Sleep(unsigned int milliseconds) override { ticks += milliseconds; }

private:
    unsigned int ticks;
};
