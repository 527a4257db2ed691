#pragma once

/// Waits until the descriptor can be read; false when an abort is requested, before or meanwhile.
bool WaitForInput(int descriptor);
