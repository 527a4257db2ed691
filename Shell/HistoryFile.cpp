#include "HistoryFile.h"

#include "Report.h"
#include "Services/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <system_error>

#include <sys/stat.h>

static off_t GetSize(int descriptor)
{
    struct stat status = {};
    return fstat(descriptor, &status) == 0 ? status.st_size : 0;
}

void HistoryFile::TakeNew(const Taker& take)
{
    const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (descriptor.IsOpen())
        Read(descriptor.Get(), take);
}

void HistoryFile::Add(const WString& line, const Taker& take)
{
    constexpr int patience = 1000; // milliseconds
    if (file.empty())
        return take(line);
    const FileDescriptor descriptor(open(file.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0600));
    if (!descriptor.IsOpen()) {
        Fail(errno);
        return take(line);
    }
    // A shell that is stopped while it holds the lock must not stop the others: the system appends in one piece, too.
    [[maybe_unused]] const bool isLocked = descriptor.TryLock(patience);
    Read(descriptor.Get(), take);
    Append(descriptor.Get(), line.ToUtf8() + "\n");
    take(line);
}

/// Takes whole lines: one that is being written comes the next time.
void HistoryFile::Read(int descriptor, const Taker& take)
{
    constexpr off_t much = 0x40000;
    const off_t size = GetSize(descriptor);
    bool isCut = false; // which spoils the first line
    if (position < 0 || position > size) {
        position = std::max<off_t>(size - much, 0);
        isCut = position > 0;
    }
    std::string text(static_cast<std::size_t>(size - position), '\0');
    const ssize_t count = pread(descriptor, text.data(), text.size(), position);
    text.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
    std::size_t start = 0;
    for (std::size_t end = text.find('\n'); end != text.npos; end = text.find('\n', start)) {
        if (!isCut)
            take(WString::FromUtf8(text.substr(start, end - start)));
        isCut = false;
        start = end + 1;
    }
    position += static_cast<off_t>(start);
}

void HistoryFile::Append(int descriptor, const std::string& bytes)
{
    char last = '\n';
    const off_t size = GetSize(descriptor);
    if (size > 0 && pread(descriptor, &last, 1, size - 1) != 1)
        last = '\n';
    const std::string text = (last == '\n' ? "" : "\n") + bytes; // where a full disk has cut the last line off
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written != static_cast<ssize_t>(text.size()))
        Fail(written < 0 ? errno : ENOSPC);
    else
        position = lseek(descriptor, 0, SEEK_CUR);
}

void HistoryFile::Fail(int error)
{
    if (!hasFailed)
        WriteErrorLine(L"labsh: warning: the history is not kept: " +
            WString::FromUtf8(file + ": " + std::generic_category().message(error)));
    hasFailed = true;
}
