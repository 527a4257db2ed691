#pragma once

#include "HostApi.h"

#include <unistd.h>

/// Owns an open file descriptor; -1 owns nothing.
class FileDescriptor
{
public:
    explicit FileDescriptor(int descriptor) noexcept : descriptor(descriptor) {}
    ~FileDescriptor()
    {
        if (descriptor >= 0)
            close(descriptor);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    bool IsOpen() const noexcept { return descriptor >= 0; }
    int Get() const noexcept { return descriptor; }

    /// Takes the lock of the open file, which stands between processes and between descriptors, and ends with this one.
    /// False when another still holds it after `limit` ms, or when an abort is requested while waiting.
    HOST_API bool TryLock(int limit) const;

private:
    int descriptor;
};
