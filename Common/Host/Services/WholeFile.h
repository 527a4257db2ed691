#pragma once

#include "Services/FileDescriptor.h"

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

/// The file behind symbolic links, whether it is there or not, so that replacing it keeps the link.
std::string Resolve(const std::string& path);

FileStamp GetStamp(const std::string& path);

/// Opens a regular file and returns its descriptor, or -1 with errno. Anything else is refused without opening it,
/// which might wait or do something to a device: throws HostException(FileError).
int OpenRegular(const std::string& path, int flags);

/// Reads a regular file; returns 0, or the system's error number. Throws HostException(FileError) for anything else.
int Read(const std::string& path, std::string& text);

/// Replaces the file, or makes it, in one step: whoever opens it meanwhile, and who finds it after a power failure,
/// sees the old contents or the new, never a part. Keeps the permissions and follows a symbolic link, also to a file
/// that is to be made. Returns the new file's stamp, also when another process has replaced the file again by then.
/// Throws HostException(FileError), also for a file that may only be read, in whatever folder.
FileStamp Write(const std::string& path, std::string_view text);

/// Keeps others who take the lock from the file for the length of a scope, so that reading, changing and replacing it
/// become one step. The lock is that of a file beside it, "<name>.lock", which stays: the file itself gives way to
/// another when it is replaced. What a Write under the lock has left behind that was killed is removed. Throws
/// HostException: FileError when the file or the folder cannot be written, is not named (by data that have never been
/// loaded) or when another holds the lock for 10 s, Aborted when an abort is requested while waiting.
class Lock
{
public:
    explicit Lock(const std::string& path);

private:
    const FileDescriptor file;
};

/// Whether the file, or the one that it is a link to, is there, or cannot even be looked for, and this process may not
/// change it, with errno then. The folder's permission to replace it does not count: whoever owns the file would be
/// locked out of the new one.
bool IsProtected(const std::string& path);

/// Removes what such a Write has left behind, if that can be done. Throws nothing but for want of memory.
void CleanUp(const std::string& path);

/// Throws HostException(FileError) with the path and the reason.
[[noreturn]] void Fail(const std::string& path, const WString& reason);
[[noreturn]] void Fail(const std::string& path, int errorNumber);

} // namespace WholeFile
