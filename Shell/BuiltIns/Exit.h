#pragma once

#include <optional>

/// The status that Exit was given; none before, and when it was given none.
std::optional<int> GetExitStatus();
