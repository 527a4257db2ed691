#pragma once

#include "CommandText.h"
#include "Findings.h"

#include <optional>

/// A list that the delimiter of the command around it has cut: one of its pieces has a keyword that belongs to a
/// former.
std::optional<LineFinding> FindCutList(std::wstring_view line, const CommandText& command, const PartText& list);

/// A loop that has neither a count nor a wait, and in which nothing changes its condition.
std::optional<LineFinding> FindEndlessLoop(std::wstring_view line, const CommandText& command);

/// Whether the command goes on, and succeeds, when one of its list fails.
bool IsFailureSwallowed(const CommandText& command);
