#include "WaitForInput.h"

#include "DelayedStatus.h"
#include "Instrument/System.h"
#include "Signals.h"
#include "Text/Abort.h"

#include <cerrno>
#include <ctime>
#include <optional>
#include <poll.h>

/// Waits for so many milliseconds at most. Signals are let in during the wait alone: between the question and the wait
/// they would be lost.
static int Poll(pollfd& input, std::optional<unsigned int> patience, const std::function<void()>& look)
{
    const Signals::Block block;
    if (Abort::IsRequested())
        return 0;
    look();
    const unsigned int left = patience.value_or(0);
    const timespec timeout = {static_cast<time_t>(left / 1000), static_cast<long>(left % 1000) * 1'000'000};
    return ppoll(&input, 1, patience ? &timeout : nullptr, &block.GetFormerMask());
}

bool WaitForInput(int descriptor, const std::function<void()>& look)
{
    pollfd input = {descriptor, POLLIN, 0};
    if (poll(&input, 1, 0) == 0) // nothing there yet
        System::usage.WriteCounts();
    while (!Abort::IsRequested()) {
        const int result = Poll(input, DelayedStatus::GetTimeLeft(), look);
        if (result > 0 || (result < 0 && errno != EINTR))
            break;
        DelayedStatus::KeepDue();
    }
    return !Abort::IsRequested();
}
