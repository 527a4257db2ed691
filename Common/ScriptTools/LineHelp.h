#pragma once

#include "Commands/ScriptAssistant.h"

/// What is to be known of what stands at the cursor; ScriptAssistant::Explain says more.
Explanation ExplainPlace(std::wstring_view line, std::size_t cursor, const Environment& environment);
/// The innermost call around the cursor.
CallForm FindCall(std::wstring_view line, std::size_t cursor);
