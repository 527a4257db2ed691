#include "Containers/ObjectHashTable.h"

#include "Text/CharacterCase.h"

#include <cstdint>

std::size_t ObjectHashTable::Hash::operator()(std::wstring_view key) const noexcept
{
    std::uint32_t hash = 2166136261; // FNV-1a over the lower-case characters
    for (const wchar_t ch : key)
        hash = (hash ^ static_cast<std::uint32_t>(ToLower(ch))) * 16777619;
    return hash;
}

bool ObjectHashTable::Equal::Same(std::wstring_view left, std::wstring_view right) noexcept
{
    return EqualsIgnoreCase(left, right);
}

bool ObjectHashTable::Add(const WString& name, std::shared_ptr<Object> object)
{
    return objects.emplace(name, std::move(object)).second;
}

void ObjectHashTable::Insert(const WString& name, std::shared_ptr<Object> object)
{
    objects.insert_or_assign(name, std::move(object));
}

Object* ObjectHashTable::GetObjectOrNull(std::wstring_view name) const noexcept
{
    const auto found = objects.find(name);
    return found == objects.end() ? nullptr : found->second.get();
}

void ObjectHashTable::GetKeys(WStringArray& names) const
{
    names.Clear();
    for (const auto& entry : objects)
        names.Add(entry.first);
}
