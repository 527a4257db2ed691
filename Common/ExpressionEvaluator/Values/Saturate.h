#pragma once

#include <cmath>
#include <limits>

/// Truncation toward zero to an integer of up to 32 bits, saturating at its limits; NaN gives 0.
template <typename Integer>
Integer Saturate(double value) noexcept
{
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value))
        return 0;
    if (value >= Limits::max())
        return Limits::max();
    if (value <= Limits::min())
        return Limits::min();
    return static_cast<Integer>(value);
}
