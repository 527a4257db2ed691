#include "Services/File.h"

#include "Services/Crc.h"
#include "Services/WholeFile.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

static_assert(sizeof(off_t) == 8, "files are larger than 2 GiB on 32-bit platforms too");

/// Calls again when a signal has interrupted.
template <typename Call>
static auto Retry(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR)
        result = call();
    return result;
}

static int OpenFlags(FileOpenMode openMode, FileAccessMode accessMode)
{
    const int access = accessMode == FileAccessMode::Read ? O_RDONLY : O_WRONLY;
    const int create = openMode == FileOpenMode::OpenExisting ? 0 : O_CREAT;
    const int place = openMode == FileOpenMode::Create ? O_TRUNC : openMode == FileOpenMode::Append ? O_APPEND : 0;
    return access | create | place | O_CLOEXEC | O_NOCTTY | O_NONBLOCK; // a FIFO is opened without waiting
}

// Delegates, so that the destructor closes the file when what follows throws.
File::File(const WString& name, FileOpenMode openMode, FileAccessMode accessMode) : File(name)
{
    const int flags = OpenFlags(openMode, accessMode);
    const bool isReading = accessMode == FileAccessMode::Read;
    descriptor =
        Retry([&] { return isReading ? WholeFile::OpenRegular(path, flags) : open(path.c_str(), flags, 0666); });
    if (descriptor == -1 || fcntl(descriptor, F_SETFL, flags & ~O_NONBLOCK) == -1)
        WholeFile::Fail(path, errno);
}

File::~File()
{
    Close();
}

bool File::Exists(const WString& name)
{
    return access(name.ToUtf8().c_str(), F_OK) == 0;
}

std::uint64_t File::GetFileSize() const
{
    struct stat status;
    if (fstat(descriptor, &status) == -1)
        WholeFile::Fail(path, errno);
    return static_cast<std::uint64_t>(status.st_size);
}

void File::Read(Buffer& buffer)
{
    buffer.SetLength(buffer.GetCapacity());
    std::size_t filled = 0;
    while (filled < buffer.GetCapacity()) {
        const ssize_t count = Retry([&] {
            Abort::ThrowIfRequested(); // each time: the signal of an abort ends a read that waits
            return read(descriptor, buffer.GetData() + filled, buffer.GetCapacity() - filled);
        });
        if (count == -1)
            WholeFile::Fail(path, errno);
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
    }
    buffer.SetLength(filled);
}

void File::Write(const void* data, std::size_t count)
{
    const auto* bytes = static_cast<const std::uint8_t*>(data);
    while (count > 0) {
        const ssize_t written = Retry([&] {
            Abort::ThrowIfRequested();
            return write(descriptor, bytes, count);
        });
        if (written == -1)
            WholeFile::Fail(path, errno);
        bytes += written;
        count -= static_cast<std::size_t>(written);
    }
}

void File::Close() noexcept
{
    if (descriptor != -1)
        close(descriptor);
    descriptor = -1;
}

bool File::GetCrc(const WString& name, std::uint32_t& crc, bool throwOnError)
{
    try {
        File file(name, FileOpenMode::OpenExisting, FileAccessMode::Read);
        Buffer block(64 * 1024);
        std::uint32_t sum = 0;
        for (file.Read(block); block.GetLength() != 0; file.Read(block))
            sum = CalculateCrc(block.GetData(), static_cast<std::size_t>(block.GetLength()), sum);
        crc = sum;
        return true;
    } catch (const HostException& error) {
        if (throwOnError || error.GetNumber() != static_cast<unsigned int>(HostError::FileError))
            throw;
        return false;
    }
}
