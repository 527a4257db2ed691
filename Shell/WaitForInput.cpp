#include "WaitForInput.h"

#include "Instrument/System.h"
#include "Text/Abort.h"

#include <cerrno>
#include <csignal>
#include <poll.h>

bool WaitForInput(int descriptor)
{
    pollfd input = {descriptor, POLLIN, 0};
    if (poll(&input, 1, 0) == 0) // nothing there yet
        System::usage.WriteCounts();
    // The interrupt is let in during the wait alone: between the question and the wait it would be lost.
    sigset_t interrupt;
    sigset_t former;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    pthread_sigmask(SIG_BLOCK, &interrupt, &former);
    while (!Abort::IsRequested() && ppoll(&input, 1, nullptr, &former) < 0 && errno == EINTR)
        ;
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
    return !Abort::IsRequested();
}
