#include "Services/WholeFile.h"

#include "Services/FileDescriptor.h"
#include "Text/HostError.h"
#include "Text/WString.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

/// The file behind symbolic links, so that replacing it keeps the link.
std::string Resolve(const std::string& path)
{
    char* resolved = realpath(path.c_str(), nullptr);
    std::string result = resolved ? resolved : path;
    std::free(resolved);
    return result;
}

FileStamp ToStamp(const struct stat& status)
{
    return {status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

bool TryWriteAll(int descriptor, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0)
            text.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Writes the text to what is to become the file `target`, with the permissions that `target` has.
bool TryFill(int descriptor, std::string_view text, const std::string& target, FileStamp& stamp)
{
    struct stat status = {};
    if (stat(target.c_str(), &status) == 0 && fchmod(descriptor, status.st_mode & 07777) != 0)
        return false;
    if (!TryWriteAll(descriptor, text) || fsync(descriptor) != 0 || fstat(descriptor, &status) != 0)
        return false;
    stamp = ToStamp(status);
    return true;
}

} // namespace

FileStamp WholeFile::GetStamp(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? ToStamp(status) : FileStamp();
}

int WholeFile::Read(const std::string& path, std::string& text)
{
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen())
        return errno;
    text.clear();
    char block[4096];
    for (;;) {
        const ssize_t count = read(file.Get(), block, sizeof(block));
        if (count == 0)
            return 0;
        if (count > 0)
            text.append(block, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return errno;
    }
}

FileStamp WholeFile::Write(const std::string& path, std::string_view text)
{
    const std::string target = Resolve(path);
    const std::string temporary = target + "." + std::to_string(gettid()) + ".tmp"; // no other thread's
    const FileDescriptor file(open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (!file.IsOpen())
        Fail(path, errno);
    FileStamp stamp;
    if (!TryFill(file.Get(), text, target, stamp) || std::rename(temporary.c_str(), target.c_str()) != 0) {
        const int errorNumber = errno;
        unlink(temporary.c_str());
        Fail(path, errorNumber);
    }
    return stamp;
}

void WholeFile::Fail(const std::string& path, const WString& reason)
{
    throw HostException(HostError::FileError, WString::FromUtf8(path) + L": " + reason);
}

void WholeFile::Fail(const std::string& path, int errorNumber)
{
    Fail(path, WString::FromUtf8(std::generic_category().message(errorNumber)));
}
