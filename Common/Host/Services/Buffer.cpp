#include "Services/Buffer.h"

void Buffer::Append(const void* data, std::size_t count)
{
    const auto* first = static_cast<const std::uint8_t*>(data);
    bytes.insert(bytes.end(), first, first + count);
}
