#pragma once

#include "Commands/ScriptAssistant.h"
#include "Window.h"

#include <string>

/// What the texts of all candidates begin with, in any case, as the first of them spells it.
WString GetCommonBeginning(const std::vector<Completion::Candidate>& candidates);

/// The candidates as lines for the terminal: each with its meaning where there are few, else in columns. What the
/// window has no room for is counted in the last line.
std::string LayOut(const std::vector<Completion::Candidate>& candidates, const Window& window, int descriptor);
