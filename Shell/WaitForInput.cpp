#include "WaitForInput.h"

#include "DelayedStatus.h"
#include "Instrument/System.h"
#include "Signals.h"
#include "Text/Abort.h"

#include <cerrno>
#include <ctime>
#include <poll.h>

bool WaitForInput(int descriptor)
{
    pollfd input = {descriptor, POLLIN, 0};
    if (poll(&input, 1, 0) == 0) // nothing there yet
        System::usage.WriteCounts();
    // Signals are let in during the wait alone: between the question and the wait they would be lost.
    const Signals::Block block;
    for (int result = 0; result == 0 || (result < 0 && errno == EINTR);) {
        if (Abort::IsRequested())
            return false;
        DelayedStatus::KeepDue();
        const auto left = DelayedStatus::GetTimeLeft();
        const timespec timeout = {
            static_cast<time_t>(left.value_or(0) / 1000), static_cast<long>(left.value_or(0) % 1000) * 1000000};
        result = ppoll(&input, 1, left ? &timeout : nullptr, &block.GetFormerMask());
    }
    return !Abort::IsRequested();
}
