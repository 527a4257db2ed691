#include "FileLines.h"

#include "Commands/CommandRunner.h"
#include "Text/Abort.h"
#include "Text/HostError.h"
#include "WaitForInput.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

/// Waits for one who writes, where it is a FIFO.
static int OpenToRead(const std::string& name)
{
    int file = -1;
    do {
        Abort::ThrowIfRequested();
        file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    } while (file < 0 && errno == EINTR);
    return file;
}

FileLines::FileLines(const std::string& name) : FileLines(OpenToRead(name), name) {}

FileLines::FileLines(int descriptor, const std::string& name) : name(name), file(descriptor)
{
    if (!file.IsOpen())
        Fail();
}

void FileLines::Fail() const
{
    throw HostException(HostError::FileError, WString::FromUtf8(name + ": " + std::generic_category().message(errno)));
}

bool FileLines::TryReadLine(std::string& line)
{
    line.clear();
    bool any = false;
    bool ended = false;
    while (!ended && (position < block.size() || TryFillBlock())) {
        any = true;
        ended = TryTakeToLineEnd(line);
    }
    if (line.ends_with('\r'))
        line.pop_back();
    if (std::exchange(isAtStart, false) && line.starts_with("\xEF\xBB\xBF"))
        line.erase(0, 3);
    return any;
}

bool FileLines::TryFillBlock()
{
    position = 0;
    while (TryReadBlock()) {
        if (!std::exchange(isBegun, true))
            RecogniseEncoding();
        if (decoder)
            block = decoder->Decode(block);
        if (!block.empty()) // else a character goes on
            return true;
    }
    block = decoder ? decoder->Finish() : "";
    return !block.empty();
}

bool FileLines::TryReadBlock()
{
    constexpr std::size_t blockSize = 0x10000;
    block.resize(blockSize);
    block.resize(Read(block.data(), blockSize));
    return !block.empty();
}

void FileLines::RecogniseEncoding()
{
    char byte = 0;
    if ((block == "\xFE" || block == "\xFF") && Read(&byte, 1) == 1) // a byte order mark that comes in pieces
        block += byte;
    decoder = Utf16Decoder::TryRecognise(block, name);
}

std::size_t FileLines::Read(char* bytes, std::size_t size)
{
    if (!WaitForInput(file.Get()))
        throw HostException(HostError::Aborted);
    const ssize_t count = read(file.Get(), bytes, size);
    if (count < 0)
        Fail();
    return static_cast<std::size_t>(count);
}

/// Moves the block's rest up to the line end into the line; false when the line goes on in the next block.
bool FileLines::TryTakeToLineEnd(std::string& line)
{
    const char* const start = block.data() + position;
    const char* const blockEnd = block.data() + block.size();
    const char* const end = std::find(start, blockEnd, '\n');
    const std::size_t room = CommandRunner::maxLineLength + 1 - line.size();
    line.append(start, std::min(static_cast<std::size_t>(end - start), room));
    const bool ended = end != blockEnd;
    position += static_cast<std::size_t>(end - start) + ended;
    return ended;
}
