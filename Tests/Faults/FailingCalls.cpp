// For LD_PRELOAD: a disk that fails. FAIL_IN names a folder, FAIL_AT which of the calls that change something in it is
// the first to fail, FAIL_WITH the number of the error, FAIL_NOTE a file that gets the names of the calls that failed.
// EIO befalls that call alone. ENOSPC, which takes the first half of what is written, and EROFS last.

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
int GetNumber(const char* variable)
{
    const char* const text = std::getenv(variable);
    return text ? std::atoi(text) : 0;
}

std::string GetPath(int file)
{
    std::error_code ignored;
    return std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(file), ignored);
}

/// Counts a call and says whether it is to fail, with errno then.
bool Strikes(const char* name, const std::string& path, bool takesRoom)
{
    static int count = 0;
    const char* const folder = std::getenv("FAIL_IN");
    const int error = GetNumber("FAIL_WITH");
    if (!folder || !path.starts_with(folder) || (error == ENOSPC && !takesRoom))
        return false;
    const int first = GetNumber("FAIL_AT");
    ++count;
    if (error == EIO ? count != first : count < first)
        return false;
    std::ofstream(std::getenv("FAIL_NOTE"), std::ios::app) << name << " " << path << "\n";
    errno = error;
    return true;
}

/// Calls the function of that name and type that the next library has.
template <typename Function, typename... Arguments>
auto CallNext(const char* name, Function*, Arguments... arguments)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name))(arguments...);
}

template <typename Function, typename... Arguments>
int Call(const char* name, const std::string& path, bool takesRoom, Function* function, Arguments... arguments)
{
    return Strikes(name, path, takesRoom) ? -1 : CallNext(name, function, arguments...);
}

template <typename Function, typename... Place>
ssize_t CallWrite(const char* name, Function* function, int file, const void* bytes, std::size_t count, Place... place)
{
    static bool isFull = false;
    if (!Strikes(name, GetPath(file), true))
        return CallNext(name, function, file, bytes, count, place...);
    if (errno != ENOSPC || std::exchange(isFull, true))
        return -1;
    return CallNext(name, function, file, bytes, (count + 1) / 2, place...);
}
} // namespace

// By the names that the headers give them, which are those with a 64 for files over 2 GiB.
extern "C" {

int open(const char* path, int flags, ...)
{
    std::va_list rest;
    va_start(rest, flags);
    const mode_t mode = flags & O_CREAT ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    const bool changes = (flags & (O_CREAT | O_TRUNC | O_ACCMODE)) != 0;
    const bool makes = (flags & O_CREAT) && access(path, F_OK) != 0;
    if (changes && Strikes("open", path, makes))
        return -1;
    return CallNext("open64", open, path, flags, mode);
}

ssize_t write(int file, const void* bytes, std::size_t count)
{
    return CallWrite("write", write, file, bytes, count);
}

ssize_t pwrite(int file, const void* bytes, std::size_t count, off_t place)
{
    return CallWrite("pwrite64", pwrite, file, bytes, count, place);
}

int ftruncate(int file, off_t size) noexcept
{
    return Call("ftruncate64", GetPath(file), false, ftruncate, file, size);
}

int fsync(int file)
{
    return Call("fsync", GetPath(file), true, fsync, file);
}

int fdatasync(int file)
{
    return Call("fdatasync", GetPath(file), true, fdatasync, file);
}

int fchmod(int file, mode_t mode) noexcept
{
    return Call("fchmod", GetPath(file), false, fchmod, file, mode);
}

int rename(const char* from, const char* to) noexcept
{
    return Call("rename", to, true, rename, from, to);
}

int unlink(const char* path) noexcept
{
    return Call("unlink", path, false, unlink, path);
}

int mkdir(const char* path, mode_t mode) noexcept
{
    return Call("mkdir", path, true, mkdir, path, mode);
}

/// What a file system that can only be read says.
int faccessat(int folder, const char* path, int mode, int flags) noexcept
{
    if (GetNumber("FAIL_WITH") == EROFS && (mode & W_OK) && access(path, F_OK) == 0 &&
        Strikes("faccessat", path, false))
        return -1;
    return CallNext("faccessat", faccessat, folder, path, mode, flags);
}
}
