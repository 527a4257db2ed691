#include "Services/Clock.h"

#include "Text/Abort.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

using Steady = std::chrono::steady_clock;

static std::atomic<Clock*> replacement_lc{nullptr};

unsigned int Clock::GetTickCount()
{
    const auto now = std::chrono::duration_cast<std::chrono::milliseconds>(Steady::now().time_since_epoch());
    return static_cast<std::uint32_t>(now.count());
}

void Clock::Sleep(unsigned int milliseconds)
{
    static constexpr std::chrono::milliseconds slice(25); // an abort is seen at the end of each
    const auto end = Steady::now() + std::chrono::milliseconds(milliseconds);
    for (auto now = Steady::now(); now < end && !Abort::IsRequested(); now = Steady::now())
        std::this_thread::sleep_until(std::min(end, now + slice));
}

Clock& Clock::Get() noexcept
{
    static Clock real;
    Clock* replacement = replacement_lc.load();
    return replacement ? *replacement : real;
}

void Clock::Replace(Clock* clock) noexcept
{
    replacement_lc.store(clock);
}

unsigned int GetTickCount()
{
    return Clock::Get().GetTickCount();
}
