#pragma once

#include "Text/WString.h"

/// Status items that are to change after a delay while the shell still runs.
namespace DelayedStatus {
/// Sets the item after the delay, where it goes evenly in the time of its travel; false when it cannot be set to the
/// value. Both are in milliseconds.
bool TrySet(const WString& name, const WString& value, unsigned int delay, unsigned int travel);
/// Waits until every delayed change has been made, and saves the status items. Returns at once when there was none.
/// Throws HostException (Aborted, or FileError when they cannot be saved).
void Finish();
/// Makes every delayed change at once and saves the status items. Throws HostException(FileError).
void FinishAtOnce();
} // namespace DelayedStatus
