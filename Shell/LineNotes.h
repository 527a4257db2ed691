#pragma once

#include "Text/WString.h"
#include "Text/WStringArray.h"

/// Adds, once, what a person who wrote the command line may not have meant, as lines for a report or the prompt.
void AddLineNotes(const WString& line, WStringArray& notes);
