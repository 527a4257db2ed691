#pragma once

#include <atomic>

/// A member that counts the living objects of its class in `count`, so that their copies and moves stay member-wise.
template <std::atomic<int>& count>
class LiveCounter
{
public:
    LiveCounter() noexcept { ++count; }
    LiveCounter(const LiveCounter&) noexcept : LiveCounter() {}
    LiveCounter& operator=(const LiveCounter&) noexcept = default;
    ~LiveCounter() { --count; }
};
