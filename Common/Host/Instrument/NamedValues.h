#pragma once

#include "Instrument/NameOrder.h"
#include "Text/WStringArray.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

/// Values by name, found in any case. Each keeps the spelling and the place in the list that its name had first.
template <typename Value>
class NamedValues
{
public:
    /// Null when there is none of that name.
    const Value* Find(const WString& name) const
    {
        const auto found = entries.find(name);
        return found == entries.end() ? nullptr : &found->second.value;
    }
    Value* Find(const WString& name) { return const_cast<Value*>(std::as_const(*this).Find(name)); }

    /// The value of that name, made at the end of the list when there is none.
    Value& Get(const WString& name)
    {
        const auto [entry, isNew] = entries.try_emplace(name);
        if (isNew)
            entry->second.place = nextPlace++;
        return entry->second.value;
    }

    bool TryDelete(const WString& name) { return entries.erase(name) != 0; }

    /// In the order of the list.
    void GetNames(WStringArray& names) const
    {
        std::vector<std::pair<unsigned long long, const WString*>> places;
        for (const auto& [name, entry] : entries)
            places.emplace_back(entry.place, &name);
        std::sort(places.begin(), places.end());
        names.Clear();
        for (const auto& [place, name] : places)
            names.Add(*name);
    }

private:
    struct Entry
    {
        Value value;
        unsigned long long place = 0;
    };

    std::map<WString, Entry, NameOrder> entries;
    unsigned long long nextPlace = 0;
};
