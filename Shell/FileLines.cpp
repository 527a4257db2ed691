#include "FileLines.h"

#include "Commands/CommandRunner.h"
#include "Text/HostError.h"
#include "WaitForInput.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

FileLines::FileLines(const std::string& name) : FileLines(open(name.c_str(), O_RDONLY | O_CLOEXEC), name) {}

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
    constexpr std::size_t blockSize = 0x10000;
    block.resize(blockSize);
    position = 0;
    if (!WaitForInput(file.Get()))
        throw HostException(HostError::Aborted);
    const ssize_t count = read(file.Get(), block.data(), blockSize);
    if (count < 0)
        Fail();
    block.resize(static_cast<std::size_t>(count));
    return count > 0;
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
