#include "Services/Rand.h"

#include <cassert>

static std::uint64_t SystemSeed()
{
    std::random_device device;
    return static_cast<std::uint64_t>(device()) << 32 | device();
}

Rand::Rand() : engine(SystemSeed()) {}

void Rand::Seed(std::uint64_t seed)
{
    std::lock_guard lock(drawing);
    engine.seed(seed);
}

double Rand::Next()
{
    std::lock_guard lock(drawing);
    return static_cast<double>(engine() >> 11) * 0x1p-53;
}

// The product of 32 random bits and the number of values has the drawn value in its upper half. Some values would be
// hit once more often than others; drawing again while the lower half is below 2^32 modulo the number of values takes
// those hits away. The standard library's distribution does not draw the same values on every platform.
int Rand::Next32(int lower, int upper)
{
    assert(lower <= upper);
    const auto values = static_cast<std::uint64_t>(std::int64_t{upper} - lower + 1);
    const auto surplus = static_cast<std::uint32_t>((std::uint64_t{1} << 32) % values);
    std::lock_guard lock(drawing);
    std::uint64_t product = 0;
    do
        product = (engine() >> 32) * values;
    while (static_cast<std::uint32_t>(product) < surplus);
    return static_cast<int>(lower + static_cast<std::int64_t>(product >> 32));
}
