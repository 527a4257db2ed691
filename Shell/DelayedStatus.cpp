#include "DelayedStatus.h"

#include "Instrument/System.h"
#include "Services/Clock.h"
#include "Text/Abort.h"

#include <algorithm>
#include <optional>

static std::optional<unsigned int> lastDue_lc; // ticks of the clock

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
    if (!lastDue_lc)
        return;
    const int wait = static_cast<int>(*lastDue_lc - GetTickCount());
    System::usage.WriteCounts();
    Clock::Get().Sleep(static_cast<unsigned int>(std::max(wait, 0)));
    Abort::ThrowIfRequested();
    System::status.Refresh();
    System::status.Save();
    lastDue_lc.reset();
}
