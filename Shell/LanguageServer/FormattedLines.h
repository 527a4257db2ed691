#pragma once

#include "LanguageServer/Document.h"

#include <vector>

/// The lines of a command that was formatted as one. Where they meet, the blanks stay as they are. Empty when more than
/// blanks has come or gone.
std::vector<WString> SplitFormatted(const ScriptCommand& command, const WString& formatted);
