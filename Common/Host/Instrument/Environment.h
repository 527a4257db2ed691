#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <memory>

/// A handle to a store of named texts that a script shares with the commands it runs: copying a handle costs nothing,
/// and every copy sees later changes. Names compare in any case and keep the spelling of their first assignment. Not
/// locked.
class HOST_API Environment
{
public:
    Environment(); // a new, empty store

    bool TryGetString(const WString& name, WString& value) const;
    /// The value; throws ExitCode(exitNumber) when there is no such variable.
    WString GetString(const WString& name, unsigned int exitNumber) const;
    bool ContainsKey(const WString& name) const;
    void SetString(const WString& name, const WString& value);
    void SetInt(const WString& name, int value);
    void SetUInt(const WString& name, unsigned int value);
    bool TryDelete(const WString& name);
    /// All names, in no particular order.
    void GetKeys(WStringArray& names) const;
    /// The names that were set or deleted since the last call, in order; at the first call, from which on they are
    /// noted, all names.
    WStringArray TakeChanges() const;

private:
    struct Store;
    std::shared_ptr<Store> store;
};
