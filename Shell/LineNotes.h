#pragma once

#include "Text/WString.h"
#include "Text/WStringArray.h"

/// Adds, once, what a person who wrote the command line may not have meant, as lines for a report or the prompt. Of a
/// line that has failed more is taken for a mistake.
void AddLineNotes(const WString& line, bool hasFailed, WStringArray& notes);
