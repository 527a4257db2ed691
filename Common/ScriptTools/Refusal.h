#pragma once

#include "CommandText.h"
#include "Findings.h"
#include "KnownNames.h"

#include <optional>

/// Why the command would be refused before it does anything, whatever the values of its references: the first reason,
/// with the message of a run. Nothing when it would be accepted, or when that depends on a value.
std::optional<LineFinding> FindRefusal(std::wstring_view line, const CommandText& command, const KnownNames& known);

/// The word that is nearly the wanted one in a part, outside double quotes, and no variable; an empty place when none
/// is.
Span FindNearly(std::wstring_view line, Span part, const wchar_t* wanted, const KnownNames& known);
