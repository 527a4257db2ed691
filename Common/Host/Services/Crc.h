#pragma once

#include "HostApi.h"

#include <cstddef>
#include <cstdint>

/// CRC-32 (IEEE 802.3) of bytes that come after those that have the value `before`.
HOST_API std::uint32_t CalculateCrc(const void* bytes, std::size_t count, std::uint32_t before = 0);
