#pragma once

#include "HostApi.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// Bytes, with a capacity that bounds what File::Read puts into it.
class HOST_API Buffer
{
public:
    explicit Buffer(unsigned int capacity) : capacity(capacity) { bytes.reserve(capacity); }

    void Append(std::uint8_t byte) { bytes.push_back(byte); }
    void Append(const void* data, std::size_t count);
    void Clear() noexcept { bytes.clear(); }
    /// Cuts the contents, or lengthens them by zero bytes.
    void SetLength(std::size_t length) { bytes.resize(length); }
    std::size_t GetLength() const noexcept { return bytes.size(); }
    std::size_t GetCapacity() const noexcept { return capacity; }
    const std::uint8_t* GetData() const noexcept { return bytes.data(); }
    std::uint8_t* GetData() noexcept { return bytes.data(); }

private:
    std::size_t capacity;
    std::vector<std::uint8_t> bytes;
};
