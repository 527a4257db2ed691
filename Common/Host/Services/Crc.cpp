#include "Services/Crc.h"

#include <zlib.h>

std::uint32_t CalculateCrc(const void* bytes, std::size_t count, std::uint32_t before)
{
    return static_cast<std::uint32_t>(crc32_z(before, static_cast<const Bytef*>(bytes), count));
}
