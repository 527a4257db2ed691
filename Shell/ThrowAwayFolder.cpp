#include "ThrowAwayFolder.h"

#include "Text/HostError.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>

namespace fs = std::filesystem;

static constexpr const char* prefix_lc = "labsh-";
static constexpr const char* mark_lc = "/ThrowAway.lock"; // in such a folder, and in no other

static void RemoveAll(const std::string& folder)
{
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

/// Locks the mark; false when another process has it, or has just removed the folder.
static bool TryLock(const FileDescriptor& mark)
{
    struct stat file = {};
    return mark.IsOpen() && mark.TryLock(0) && fstat(mark.Get(), &file) == 0 && file.st_nlink > 0 &&
        file.st_uid == geteuid();
}

/// Removes the folders of this user that are not in use.
static void RemoveLeftOver(const fs::path& temporary)
{
    std::error_code ignored;
    for (fs::directory_iterator entry(temporary, ignored), end; entry != end; entry.increment(ignored)) {
        const std::string folder = entry->path().string();
        if (!entry->path().filename().string().starts_with(prefix_lc) ||
            !fs::is_directory(entry->symlink_status(ignored)))
            continue;
        const FileDescriptor mark(open((folder + mark_lc).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
        if (TryLock(mark))
            RemoveAll(folder);
    }
}

ThrowAwayFolder::ThrowAwayFolder()
{
    std::error_code error;
    const fs::path temporary = fs::temp_directory_path(error);
    if (error)
        throw HostException(
            HostError::FileError, WString::FromUtf8("the folder for temporary files: " + error.message()));
    RemoveLeftOver(temporary);
    for (int tries = 3; tries > 0; --tries) { // another process may take it for one left behind, before it is locked
        path = (temporary / prefix_lc).string() + "XXXXXX";
        if (!mkdtemp(path.data()))
            break;
        mark.emplace(open((path + mark_lc).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
        if (TryLock(*mark))
            return;
        const int reason = errno;
        RemoveAll(path);
        errno = reason;
    }
    throw HostException(HostError::FileError, WString::FromUtf8(path + ": " + std::generic_category().message(errno)));
}

ThrowAwayFolder::~ThrowAwayFolder()
{
    RemoveAll(path);
}
