#pragma once

#include "Commands/ScriptAnalysis.h"
#include "Instrument/Environment.h"

#include <string>
#include <string_view>

/// Reads a script, in UTF-8, without running it; ScriptAssistant::Analyse says more.
ScriptAnalysis CheckScript(std::string_view script, const std::string& path, const Environment& variables);
