#pragma once

#include "HostApi.h"
#include "Instrument/Environment.h"
#include "Text/WString.h"

/// References to the instrument's data inside a text: %S{status item}, %C{[section]key}, %U{usage counter} and
/// %E{environment variable}. The letter may be of either case, and blanks around the name do not count.
namespace Reference {
/// The text with its references replaced by their values. Throws HostException(UnknownReference) with the first
/// reference that names nothing or lacks its closing brace.
HOST_API WString ReplaceAll(const WString& text, const Environment& environment);

/// Whether there is what the reference, as it is written, refers to.
HOST_API bool Exists(const WString& reference, const Environment& environment);
/// What a reference to nothing, as it is written, was most likely meant to be; empty when no name is near.
HOST_API WString FindSimilar(const WString& reference, const Environment& environment);

/// Splits "[section]key" or "section key"; false when the name is neither.
HOST_API bool TrySplitConfigName(const WString& name, WString& section, WString& key);
/// The text of the setting of such a name; false when there is none.
HOST_API bool TryGetConfig(const WString& name, WString& value);
/// The value of the usage counter as text; false when there is none.
HOST_API bool TryGetUsage(const WString& name, WString& value);
} // namespace Reference
