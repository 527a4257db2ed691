#pragma once

#include <functional>

/// Waits until the descriptor can be read; false when an abort is requested, before or meanwhile. Calls `look` before
/// it waits, and again when a signal, such as that of a window of another size, has interrupted the wait.
bool WaitForInput(
    int descriptor, const std::function<void()>& look = [] {});
