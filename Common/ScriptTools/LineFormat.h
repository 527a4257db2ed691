#pragma once

#include "Text/WString.h"

/// The command line as it is usually written, with the same meaning.
WString FormatLine(const WString& line);
