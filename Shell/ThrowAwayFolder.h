#pragma once

#include "Text/HostError.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>

/// A new folder that goes away with all in it.
class ThrowAwayFolder
{
public:
    /// Throws HostException(FileError).
    ThrowAwayFolder() : path((std::filesystem::temp_directory_path() / "labsh-XXXXXX").string())
    {
        if (!mkdtemp(path.data()))
            throw HostException(
                HostError::FileError, WString::FromUtf8(path + ": " + std::generic_category().message(errno)));
    }
    ~ThrowAwayFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    ThrowAwayFolder(const ThrowAwayFolder&) = delete;
    ThrowAwayFolder& operator=(const ThrowAwayFolder&) = delete;

    const std::string& GetPath() const noexcept { return path; }

private:
    std::string path;
};
