#include "Containers/ObjectHashTable.h"

std::size_t ObjectHashTable::Hash::operator()(std::wstring_view key) const
{
    NameHash hash;
    for (const wchar_t ch : key)
        hash.Add(ch);
    return hash.Get();
}

bool ObjectHashTable::Add(const WString& name, std::shared_ptr<Object> object)
{
    return objects.emplace(name, std::move(object)).second;
}

void ObjectHashTable::Insert(const WString& name, std::shared_ptr<Object> object)
{
    objects.insert_or_assign(name, std::move(object));
}

template <typename Objects, typename Name>
static Object* Find(const Objects& objects, const Name& name) noexcept
{
    const auto found = objects.find(name);
    return found == objects.end() ? nullptr : found->second.get();
}

Object* ObjectHashTable::GetObjectOrNull(std::wstring_view name) const noexcept
{
    return Find(objects, name);
}

Object* ObjectHashTable::GetObjectOrNull(const HashedName& name) const noexcept
{
    return Find(objects, name);
}

void ObjectHashTable::GetKeys(WStringArray& names) const
{
    names.Clear();
    for (const auto& entry : objects)
        names.Add(entry.first);
}
