#pragma once

#include "Text/WString.h"

/// Whether the text of the code of a failure, "id:module:number", may match the pattern.
bool CanMatchFailure(const WString& pattern);
