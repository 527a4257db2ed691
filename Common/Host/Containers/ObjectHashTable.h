#pragma once

#include "Containers/Object.h"
#include "HostApi.h"
#include "Text/CharacterCase.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>

/// The hash of a name in any case, computed character by character (FNV-1a over the lower case), so that whoever reads
/// a name has it at the end.
class NameHash
{
public:
    void Add(wchar_t ch) noexcept { hash = (hash ^ static_cast<std::uint32_t>(ToLower(ch))) * 16777619; }
    std::size_t Get() const noexcept { return hash; }

private:
    std::uint32_t hash = 2166136261;
};

/// A name with its hash.
struct HashedName
{
    std::wstring_view name;
    std::size_t hash;
};

/// Objects by name. Names compare in any case and keep the spelling under which they were first inserted. The table
/// shares ownership of its objects, so handing one to a second table is safe. Not locked.
class HOST_API ObjectHashTable
{
    struct Hash
    {
        using is_transparent = void;
        HOST_API std::size_t operator()(std::wstring_view key) const; // not noexcept: so the map keeps the hashes
        std::size_t operator()(const WString& key) const { return (*this)(key.View()); }
        std::size_t operator()(const HashedName& key) const noexcept { return key.hash; }
    };
    struct Equal
    {
        using is_transparent = void;
        static std::wstring_view View(std::wstring_view key) noexcept { return key; }
        static std::wstring_view View(const WString& key) noexcept { return key.View(); }
        static std::wstring_view View(const HashedName& key) noexcept { return key.name; }
        bool operator()(const auto& left, const auto& right) const noexcept
        {
            return EqualsIgnoreCase(View(left), View(right));
        }
    };
    using Map = std::unordered_map<WString, std::shared_ptr<Object>, Hash, Equal>;

public:
    explicit ObjectHashTable(unsigned int bucketCount) : objects(bucketCount) {}

    /// Adds the object unless the name is taken; returns whether it was added.
    bool Add(const WString& name, std::shared_ptr<Object> object);
    /// Adds the object or replaces the one of that name.
    void Insert(const WString& name, std::shared_ptr<Object> object);
    /// Null when there is none; the table goes on owning the object, until it is replaced or the table is cleared.
    Object* GetObjectOrNull(std::wstring_view name) const noexcept;
    Object* GetObjectOrNull(const HashedName& name) const noexcept;
    std::size_t Count() const noexcept { return objects.size(); }
    void Clear() noexcept { objects.clear(); }
    /// All names, in no particular order.
    void GetKeys(WStringArray& names) const;

private:
    friend class ObjectHashTableIterator;
    Map objects;
};

/// Walks a table in its own order. Valid while the table is not changed.
class HOST_API ObjectHashTableIterator
{
public:
    explicit ObjectHashTableIterator(const ObjectHashTable& table) : table(&table) { MoveToFirst(); }

    void MoveToFirst() { position = table->objects.begin(); }
    void MoveToNext() { ++position; }
    bool IsAtEnd() const { return position == table->objects.end(); }
    const WString& GetKey() const { return position->first; }
    const std::shared_ptr<Object>& GetObject() const { return position->second; }

private:
    const ObjectHashTable* table;
    ObjectHashTable::Map::const_iterator position;
};
