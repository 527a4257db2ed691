#pragma once

#include "HostApi.h"
#include "Text/WString.h"

/// The text as a JSON string, in quotes.
HOST_API WString QuoteForJson(const WString& text);
/// The text of a number, as the host reads them, as a JSON number.
HOST_API WString NumberForJson(const WString& text);
