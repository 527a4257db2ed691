#include "Commands/StandardOutput.h"

#include "Text/Abort.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <poll.h>
#include <string>
#include <unistd.h>

StandardOutput::StandardOutput() : isTerminal(isatty(STDOUT_FILENO) == 1) {}

StandardOutput& StandardOutput::Get()
{
    static StandardOutput output;
    return output;
}

void StandardOutput::DoWriteLine(const WString& line)
{
    const std::string bytes = line.ToUtf8() + '\n';
    if (bytes.size() > block.size() - length)
        Flush();
    if (bytes.size() > block.size()) {
        Write(bytes);
        return;
    }
    std::ranges::copy(bytes, block.data() + length);
    length += bytes.size();
    if (isTerminal) {
        Flush();
        Remember(line);
    }
}

void StandardOutput::Remember(const WString& line)
{
    constexpr std::size_t fewLines = 50;
    if (shown.Count() == fewLines)
        shown.Clear();
    shown.Add(line.Trim());
}

bool StandardOutput::HasShown(std::wstring_view line) const
{
    return std::ranges::any_of(shown, [&](const WString& other) { return other.View() == line; });
}

void StandardOutput::Flush() noexcept
{
    Write({block.data(), length});
    length = 0;
}

void StandardOutput::Write(std::string_view bytes) noexcept
{
    while (!bytes.empty() && fault == 0) {
        // Once an abort is requested, no more than what a reader that has room is sure to take.
        const std::size_t size = Abort::IsRequested() ? std::min<std::size_t>(bytes.size(), PIPE_BUF) : bytes.size();
        const ssize_t written = write(STDOUT_FILENO, bytes.data(), size);
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if ((errno != EINTR && errno != EAGAIN) || !TryWaitForReader())
            fault = errno;
    }
    if (fault != 0)
        Abort::Request();
}

/// Waits until a reader has room; no longer than a second once an abort is requested, and then errno says why not.
bool StandardOutput::TryWaitForReader() noexcept
{
    constexpr int patience = 1000; // milliseconds
    pollfd reader = {STDOUT_FILENO, POLLOUT, 0};
    const int count = poll(&reader, 1, Abort::IsRequested() ? patience : -1);
    if (count == 0)
        errno = EAGAIN;
    return count == 1 || (count < 0 && errno == EINTR);
}
