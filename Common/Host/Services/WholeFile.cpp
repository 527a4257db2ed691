#include "Services/WholeFile.h"

#include "Text/Abort.h"
#include "Text/HostError.h"
#include "Text/WString.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <random>
#include <system_error>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr int longestWait = 10000; // ms for the lock of a file

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

[[noreturn]] void RefuseSpecial(const std::string& path, const struct stat& status)
{
    if (S_ISDIR(status.st_mode))
        WholeFile::Fail(path, EISDIR);
    WholeFile::Fail(path, L"Not a regular file");
}

constexpr std::string_view temporaryEnding = ".tmp";

/// A name that no other process or thread has, in whatever container or machine it shares the folder from.
std::string GetTemporaryName(const std::string& target)
{
    std::random_device random;
    return target + "." + std::to_string(random()) + std::to_string(random()) + std::string(temporaryEnding);
}

/// The files of such names.
std::vector<std::string> ListTemporaries(const std::string& target)
{
    const std::size_t folderEnd = target.rfind('/') + 1; // 0: no folder is named
    const std::string folder = target.substr(0, folderEnd);
    const std::string start = target.substr(folderEnd) + ".";
    const std::unique_ptr<DIR, int (*)(DIR*)> files(opendir(folder.empty() ? "." : folder.c_str()), closedir);
    std::vector<std::string> found;
    while (const dirent* file = files ? readdir(files.get()) : nullptr) {
        const std::string_view name = file->d_name;
        if (name.starts_with(start) && name.ends_with(temporaryEnding) &&
            name.find_first_not_of("0123456789", start.size()) == name.size() - temporaryEnding.size())
            found.push_back(folder + file->d_name);
    }
    return found;
}

/// Opens the file of the lock, which is for everyone who may change the file itself.
int OpenLock(const std::string& target)
{
    if (WholeFile::IsProtected(target))
        return -1;
    const int descriptor =
        open((target + ".lock").c_str(), O_RDONLY | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    struct stat status = {};
    if (descriptor >= 0 && stat(target.c_str(), &status) == 0) [[maybe_unused]]
        const int changed = fchmod(descriptor, status.st_mode & 0666); // by its owner
    return descriptor;
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

std::string WholeFile::Resolve(const std::string& path)
{
    constexpr int mostLinks = 40;
    std::filesystem::path target = path;
    std::error_code error;
    for (int i = 0; i < mostLinks && std::filesystem::is_symlink(target, error); ++i)
        target = target.parent_path() / std::filesystem::read_symlink(target, error); // an absolute one stands alone
    return target;
}

FileStamp WholeFile::GetStamp(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? ToStamp(status) : FileStamp();
}

int WholeFile::OpenRegular(const std::string& path, int flags)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode))
        RefuseSpecial(path, status);
    const int descriptor = open(path.c_str(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, 0666);
    if (descriptor < 0 || fstat(descriptor, &status) != 0 || S_ISREG(status.st_mode))
        return descriptor;
    close(descriptor); // it has taken the place of what was there before
    RefuseSpecial(path, status);
}

int WholeFile::Read(const std::string& path, std::string& text)
{
    const FileDescriptor file(OpenRegular(path, O_RDONLY));
    if (!file.IsOpen())
        return errno;
    text.clear();
    char block[4096];
    for (;;) {
        if (text.size() > Abort::interval)
            Abort::ThrowIfRequested();
        const ssize_t count = read(file.Get(), block, sizeof(block));
        if (count == 0)
            return 0;
        if (count > 0)
            text.append(block, static_cast<std::size_t>(count));
        else if (errno != EINTR)
            return errno;
        else
            Abort::ThrowIfRequested(); // by its signal
    }
}

FileStamp WholeFile::Write(const std::string& path, std::string_view text)
{
    const std::string target = Resolve(path);
    if (IsProtected(target))
        Fail(path, errno);
    const std::string temporary = GetTemporaryName(target);
    const FileDescriptor file(open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
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

WholeFile::Lock::Lock(const std::string& path) : file(path.empty() ? -1 : OpenLock(Resolve(path)))
{
    if (path.empty())
        throw HostException(HostError::FileError, L"no data folder has been opened");
    if (!file.IsOpen())
        Fail(path, errno);
    if (!file.TryLock(longestWait)) {
        Abort::ThrowIfRequested();
        Fail(path, L"locked by another process");
    }
    for (const std::string& temporary : ListTemporaries(Resolve(path)))
        unlink(temporary.c_str()); // who had the lock was killed
}

bool WholeFile::IsProtected(const std::string& path)
{
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0 && errno != ENOENT && errno != ENOTDIR;
}

void WholeFile::CleanUp(const std::string& path)
try {
    if (!ListTemporaries(Resolve(path)).empty()) {
        const Lock lock(path);
    }
} catch (const HostException&) { // they do no harm
}

void WholeFile::Fail(const std::string& path, const WString& reason)
{
    throw HostException(HostError::FileError, WString::FromUtf8(path) + L": " + reason);
}

void WholeFile::Fail(const std::string& path, int errorNumber)
{
    Fail(path, WString::FromUtf8(std::generic_category().message(errorNumber)));
}
