#include "DelayedStatus.h"

#include "Instrument/System.h"
#include "Report.h"
#include "Services/Clock.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <algorithm>
#include <utility>

static std::optional<unsigned int> lastDue_lc; // ticks of the clock
static bool hasFailed_lc = false;              // to save a value while the shell went on

bool DelayedStatus::TrySet(const WString& name, const WString& value, unsigned int delay, unsigned int travel)
{
    if (!System::status.TrySetAfter(name, value, delay, travel))
        return false;
    const unsigned int now = GetTickCount();
    const unsigned int wait = lastDue_lc ? *lastDue_lc - now : 0;
    const bool isPast = static_cast<int>(wait) < 0; // the clock wraps
    lastDue_lc = now + std::max(isPast ? 0 : wait, delay + travel);
    return true;
}

std::optional<unsigned int> DelayedStatus::GetTimeLeft()
{
    if (!lastDue_lc)
        return std::nullopt;
    return static_cast<unsigned int>(std::max(static_cast<int>(*lastDue_lc - GetTickCount()), 0));
}

void DelayedStatus::KeepDue() noexcept
try {
    if (GetTimeLeft() != 0u)
        return;
    lastDue_lc.reset();
    System::status.Refresh();
    System::status.Save();
} catch (const HostException& failure) {
    hasFailed_lc = true;
    WriteErrorLine(L"labsh: warning: a delayed value is lost: " + failure.GetMessage());
} catch (...) { // no memory to tell
    hasFailed_lc = true;
}

void DelayedStatus::FinishAtOnce()
{
    if (!lastDue_lc)
        return;
    System::status.SetDelayed();
    System::status.Save();
    lastDue_lc.reset();
}

void DelayedStatus::Finish()
{
    if (lastDue_lc) {
        System::usage.WriteCounts();
        Clock::Get().Sleep(*GetTimeLeft());
        Abort::ThrowIfRequested();
        System::status.Refresh();
        System::status.Save();
        lastDue_lc.reset();
    }
    if (std::exchange(hasFailed_lc, false))
        throw HostException(HostError::FileError, L"a delayed value could not be saved");
}
