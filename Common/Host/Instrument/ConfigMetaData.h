#pragma once

#include "HostApi.h"
#include "Instrument/NameOrder.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <map>
#include <mutex>

enum class ConfigDataType
{
    Int = 1,
    Str = 2,
    Dbl = 3,
    UInt = 4,
    Bool = 6
};

/// What is known of configuration keys: their type, default and limits, as the programs that read them registered them.
/// The configuration document is printed from it. Safe under threads.
class HOST_API ConfigMetaData
{
public:
    struct Item
    {
        WString section; // as first spelled
        WString key;
        ConfigDataType type = ConfigDataType::Str;
        WString description;
        double min = 0; // Str: the least and greatest length; -1 for no limit
        double max = 0;
        double defaultNumber = 0; // Bool: 1 or 0
        WString defaultText;      // Str only
    };

    /// Records a key of a numeric or boolean type; a null description keeps the one already known.
    void Update(const WString& section, const WString& key, ConfigDataType type, const wchar_t* description, double min,
        double max, double defaultValue);
    /// Records a text key.
    void UpdateStr(const WString& section, const WString& key, const wchar_t* description, int minLength, int maxLength,
        const wchar_t* defaultValue);

    bool TryGet(const WString& section, const WString& key, Item& item) const;
    /// Whether a text serves as the key's value.
    static bool Fits(const Item& item, const WString& value);
    /// The key with its type, default, limits and description, in one line.
    static WString Describe(const Item& item);
    /// The configuration document: a line "[section]" for each section and a line for each key with its type, default,
    /// limits (those that narrow the type's range) and description, sorted.
    void GetDocument(WStringArray& lines) const;

private:
    using Keys = std::map<WString, Item, NameOrder>;

    mutable std::mutex lock;
    std::map<WString, Keys, NameOrder> sections;

    Item& Touch(const WString& section, const WString& key, ConfigDataType type, const wchar_t* description);
};
