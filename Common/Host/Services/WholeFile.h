#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

#include <sys/types.h>

class WString;

/// What tells one state of a file from the next without reading it; all zero for a file that is not there.
struct FileStamp
{
    ino_t node = 0;
    off_t size = 0;
    time_t seconds = 0; // of the last change
    long nanoseconds = 0;

    bool operator==(const FileStamp&) const = default;
};

/// Files read and written as a whole.
namespace WholeFile {

FileStamp GetStamp(const std::string& path);

/// Reads the file; returns 0, or the system's error number.
int Read(const std::string& path, std::string& text);

/// Replaces the file, or makes it, in one step: whoever opens it meanwhile, and who finds it after a power failure,
/// sees the old contents or the new, never a part. Keeps the permissions and follows a symbolic link. Returns the new
/// file's stamp, also when another process has replaced the file again by then. Throws HostException(FileError).
FileStamp Write(const std::string& path, std::string_view text);

/// Throws HostException(FileError) with the path and the reason.
[[noreturn]] void Fail(const std::string& path, const WString& reason);
[[noreturn]] void Fail(const std::string& path, int errorNumber);

} // namespace WholeFile
