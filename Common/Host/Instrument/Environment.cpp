#include "Instrument/Environment.h"

#include "Instrument/NameOrder.h"
#include "Text/ExitCode.h"

#include <map>
#include <optional>
#include <set>
#include <string>

struct Environment::Store
{
    std::map<WString, WString, NameOrder> variables;
    std::optional<std::set<WString, NameOrder>> changes; // once somebody wants to know them

    void NoteChange(const WString& name)
    {
        if (changes)
            changes->insert(name);
    }
};

Environment::Environment() : store(std::make_shared<Store>()) {}

bool Environment::TryGetString(const WString& name, WString& value) const
{
    const auto found = store->variables.find(name);
    if (found == store->variables.end())
        return false;
    value = found->second;
    return true;
}

WString Environment::GetString(const WString& name, unsigned int exitNumber) const
{
    WString value;
    if (!TryGetString(name, value))
        throw ExitCode(exitNumber);
    return value;
}

bool Environment::ContainsKey(const WString& name) const
{
    return store->variables.contains(name);
}

void Environment::SetString(const WString& name, const WString& value)
{
    // Keeps the key, and so its spelling, of an earlier assignment.
    store->NoteChange(store->variables.insert_or_assign(name, value).first->first);
}

void Environment::SetInt(const WString& name, int value)
{
    SetString(name, WString::FromUtf8(std::to_string(value)));
}

void Environment::SetUInt(const WString& name, unsigned int value)
{
    SetString(name, WString::FromUtf8(std::to_string(value)));
}

bool Environment::TryDelete(const WString& name)
{
    const auto found = store->variables.find(name);
    if (found == store->variables.end())
        return false;
    store->NoteChange(found->first);
    store->variables.erase(found);
    return true;
}

void Environment::GetKeys(WStringArray& names) const
{
    names.Clear();
    for (const auto& [name, value] : store->variables)
        names.Add(name);
}

WStringArray Environment::TakeChanges() const
{
    WStringArray names;
    if (!store->changes)
        GetKeys(names);
    else
        for (const WString& name : *store->changes)
            names.Add(name);
    store->changes.emplace();
    return names;
}
