#pragma once

#include "HostApi.h"

#include <cstdint>
#include <mutex>
#include <random>

/// A generator of uniform random numbers. Safe under threads.
class HOST_API Rand
{
public:
    /// Seeded from the system.
    Rand();
    explicit Rand(std::uint64_t seed) : engine(seed) {}

    void Seed(std::uint64_t seed);
    /// From 0 up to, but not including, 1.
    double Next();
    /// From `lower` to `upper`, both included; the full signed range is allowed. `lower` must not exceed `upper`.
    int Next32(int lower, int upper);

private:
    std::mutex drawing;
    std::mt19937_64 engine;
};
