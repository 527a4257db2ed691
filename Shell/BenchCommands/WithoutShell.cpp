// What the commands ask of the shell around them, in programs that have none. All of it is for any thread.

#include "DelayedStatus.h"
#include "Instrument/System.h"
#include "Report.h"
#include "SessionLog.h"
#include "Text/Abort.h"
#include "WaitForInput.h"

#include <cerrno>
#include <poll.h>

/// Looks at the abort request all the time: another thread may make it, which interrupts no wait.
bool WaitForInput(int descriptor, const std::function<void()>&)
{
    constexpr int interval = 50; // ms
    pollfd input = {descriptor, POLLIN, 0};
    int result = 0;
    while (!Abort::IsRequested() && (result == 0 || (result < 0 && errno == EINTR)))
        result = poll(&input, 1, interval);
    return !Abort::IsRequested();
}

/// The item has the value when it is due; the next save of a status item writes it to the file.
bool DelayedStatus::TrySet(const WString& name, const WString& value, unsigned int delay, unsigned int travel)
{
    return System::status.TrySetAfter(name, value, delay, travel);
}

/// No session is recorded.
bool RecordedLines::TryReadLine(std::string& line)
{
    return source.TryReadLine(line);
}

/// The program has the reports of its commands, and asks System::usage for that of the counters.
void ReportCounters() noexcept {}

void ForgetShown() {}
