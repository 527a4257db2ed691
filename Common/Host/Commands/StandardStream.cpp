#include "Commands/StandardStream.h"

#include "Text/Abort.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstddef>
#include <poll.h>
#include <unistd.h>

int StandardStream::Write(std::string_view bytes) noexcept
{
    while (!bytes.empty()) {
        const bool isEnding = Abort::IsRequested();
        if (isEnding && !TryWaitForReader())
            return ETIMEDOUT;
        // At the end no more than what a reader that has room is sure to take.
        const std::size_t size = isEnding ? std::min<std::size_t>(bytes.size(), PIPE_BUF) : bytes.size();
        const ssize_t written = write(descriptor, bytes.data(), size);
        if (written >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            patience = maxPatience;
        } else if (errno == EAGAIN) { // whoever shares the descriptor does not let it wait by itself
            pollfd reader = {descriptor, POLLOUT, 0};
            poll(&reader, 1, isEnding ? 0 : -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

/// Waits until the reader has room, or is gone.
bool StandardStream::TryWaitForReader() noexcept
{
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::milliseconds(patience);
    pollfd reader = {descriptor, POLLOUT, 0};
    int count = poll(&reader, 1, patience);
    while (count < 0 && errno == EINTR) { // by a further signal
        const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
        patience = std::max(static_cast<int>(rest.count()), 0);
        count = poll(&reader, 1, patience);
    }
    if (count != 1)
        patience = 0;
    return count == 1;
}
