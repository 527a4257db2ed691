#include "WaitForInput.h"

#include "Instrument/System.h"
#include "Signals.h"
#include "Text/Abort.h"

#include <cerrno>
#include <poll.h>

bool WaitForInput(int descriptor)
{
    pollfd input = {descriptor, POLLIN, 0};
    if (poll(&input, 1, 0) == 0) // nothing there yet
        System::usage.WriteCounts();
    // Signals are let in during the wait alone: between the question and the wait they would be lost.
    const Signals::Block block;
    while (!Abort::IsRequested() && ppoll(&input, 1, nullptr, &block.GetFormerMask()) < 0 && errno == EINTR)
        ;
    return !Abort::IsRequested();
}
