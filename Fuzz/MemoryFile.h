#pragma once

#include "Require.h"

#include <cstddef>
#include <string>
#include <string_view>

#include <sys/mman.h>
#include <unistd.h>

/// A file that is in memory alone.
class MemoryFile
{
public:
    explicit MemoryFile(std::string_view bytes) : descriptor(memfd_create("input", MFD_CLOEXEC))
    {
        Require(descriptor >= 0, "there is a file in memory");
        Require(write(descriptor, bytes.data(), bytes.size()) == static_cast<ssize_t>(bytes.size()), "it has room");
    }
    ~MemoryFile() { close(descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string GetPath() const { return "/proc/self/fd/" + std::to_string(descriptor); }

private:
    const int descriptor;
};
