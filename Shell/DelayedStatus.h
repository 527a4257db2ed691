#pragma once

#include "Text/WString.h"

/// Status items that are to change after a delay while the shell still runs.
namespace DelayedStatus {
/// Sets the item after the delay. Throws nothing; whether the value fits the item is seen when it is set.
void Set(const WString& name, const WString& value, unsigned int milliseconds);
/// Waits until every delayed change has been made, and saves the status items. Returns at once when there was none.
/// Throws HostException (Aborted, or FileError when they cannot be saved).
void Finish();
} // namespace DelayedStatus
