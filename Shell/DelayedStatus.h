#pragma once

#include "Text/WString.h"

#include <optional>

/// Status items that are to change after a delay while the shell still runs.
namespace DelayedStatus {
/// Sets the item after the delay, where it goes evenly in the time of its travel; false when it cannot be set to the
/// value. Both are in milliseconds.
bool TrySet(const WString& name, const WString& value, unsigned int delay, unsigned int travel);
/// The milliseconds until the last change is due; none while there is no change to come.
std::optional<unsigned int> GetTimeLeft();
/// Saves the status items once every change has been made, so that other shells see them. Throws nothing: what cannot
/// be saved now is tried again.
void KeepDue() noexcept;
/// Waits until every delayed change has been made, and saves the status items. Returns at once when there was none.
/// Throws HostException (Aborted, or FileError when they cannot be saved, or could not be by KeepDue).
void Finish();
/// Makes every delayed change at once and saves the status items. Throws HostException(FileError).
void FinishAtOnce();
} // namespace DelayedStatus
