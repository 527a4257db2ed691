#pragma once

#include "Services/FileDescriptor.h"

#include <optional>
#include <string>

/// A new folder that goes away with all in it. Those that processes left behind which were killed go away with it.
class ThrowAwayFolder
{
public:
    /// Throws HostException(FileError).
    ThrowAwayFolder();
    ~ThrowAwayFolder();
    ThrowAwayFolder(const ThrowAwayFolder&) = delete;
    ThrowAwayFolder& operator=(const ThrowAwayFolder&) = delete;

    const std::string& GetPath() const noexcept { return path; }

private:
    std::string path;
    std::optional<FileDescriptor> mark; // locked, so that the folder is known to be in use
};
