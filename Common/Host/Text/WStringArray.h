#pragma once

#include "Text/WString.h"

#include <initializer_list>
#include <vector>

/// A growable list of texts.
class HOST_API WStringArray
{
public:
    WStringArray() = default;
    WStringArray(std::initializer_list<WString> texts) : items(texts) {}

    void Add(const WString& text) { items.push_back(text); }
    void Add(WString&& text) { items.push_back(std::move(text)); }
    void Clear() noexcept { items.clear(); }
    /// Sorts by character value without regard to case; texts that differ in case only keep upper case first.
    void Sort();

    std::size_t Count() const noexcept { return items.size(); }
    bool IsEmpty() const noexcept { return items.empty(); }
    const WString& operator[](std::size_t index) const noexcept { return items[index]; }
    auto begin() const noexcept { return items.begin(); }
    auto end() const noexcept { return items.end(); }

private:
    std::vector<WString> items;
};
