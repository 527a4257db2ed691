#pragma once

#include "Text/WString.h"

/// The text as a JSON string, in quotes.
WString QuoteForJson(const WString& text);
/// The text of a number, as the host reads them, as a JSON number.
WString NumberForJson(const WString& text);
