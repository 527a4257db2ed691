#include "Instrument/ConfigMetaData.h"

#include <cmath>
#include <limits>

namespace {

constexpr double maxDouble = std::numeric_limits<double>::max();

struct TypeRow
{
    ConfigDataType type;
    const wchar_t* name;
    double lowest; // limits at or beyond these say nothing
    double highest;
};

constexpr TypeRow typeRows_lc[] = {
    {ConfigDataType::Int, L"Int", std::numeric_limits<int>::min(), std::numeric_limits<int>::max()},
    {ConfigDataType::Str, L"Str", 0, std::numeric_limits<int>::max()},
    {ConfigDataType::Dbl, L"Dbl", -maxDouble, maxDouble},
    {ConfigDataType::UInt, L"UInt", 0, std::numeric_limits<unsigned int>::max()},
    {ConfigDataType::Bool, L"Bool", 0, 1},
};

const TypeRow& GetRow(ConfigDataType type)
{
    for (const TypeRow& row : typeRows_lc)
        if (row.type == type)
            return row;
    return typeRows_lc[1]; // a value outside the enumeration
}

WString GetDefault(const ConfigMetaData::Item& item)
{
    switch (item.type) {
    case ConfigDataType::Str: return L"\"" + item.defaultText + L"\"";
    case ConfigDataType::Bool: return item.defaultNumber != 0 ? L"true" : L"false";
    default: return WString::Format(L"%.15g", item.defaultNumber);
    }
}

WString GetLimits(const ConfigMetaData::Item& item, const TypeRow& row)
{
    const bool below = item.min > row.lowest;
    const bool above = (item.max >= 0 || item.type != ConfigDataType::Str) && item.max < row.highest;
    if (!below && !above)
        return WString();
    WString text = item.type == ConfigDataType::Str ? L", length" : L",";
    if (below)
        text.AppendFormat(above ? L" %.15g to" : L" at least %.15g", item.min);
    if (above)
        text.AppendFormat(below ? L" %.15g" : L" at most %.15g", item.max);
    return text;
}

} // namespace

ConfigMetaData::Item& ConfigMetaData::Touch(
    const WString& section, const WString& key, ConfigDataType type, const wchar_t* description)
{
    const auto known = sections.try_emplace(section).first;
    const auto [entry, isNew] = known->second.try_emplace(key);
    Item& item = entry->second;
    if (isNew) {
        item.section = known->first;
        item.key = key;
    }
    item.type = type;
    if (description)
        item.description = description;
    return item;
}

void ConfigMetaData::Update(const WString& section, const WString& key, ConfigDataType type, const wchar_t* description,
    double min, double max, double defaultValue)
{
    const std::lock_guard guard(lock);
    Item& item = Touch(section, key, type, description);
    item.min = min;
    item.max = max;
    item.defaultNumber = defaultValue;
    item.defaultText.Clear();
}

void ConfigMetaData::UpdateStr(const WString& section, const WString& key, const wchar_t* description, int minLength,
    int maxLength, const wchar_t* defaultValue)
{
    const std::lock_guard guard(lock);
    Item& item = Touch(section, key, ConfigDataType::Str, description);
    item.min = minLength;
    item.max = maxLength;
    item.defaultNumber = 0;
    item.defaultText = defaultValue;
}

bool ConfigMetaData::TryGet(const WString& section, const WString& key, Item& item) const
{
    const std::lock_guard guard(lock);
    const auto keys = sections.find(section);
    if (keys == sections.end())
        return false;
    const auto found = keys->second.find(key);
    if (found == keys->second.end())
        return false;
    item = found->second;
    return true;
}

bool ConfigMetaData::Fits(const Item& item, const WString& value)
{
    bool flag = false;
    double number = 0;
    const auto length = static_cast<double>(value.Length());
    switch (item.type) {
    case ConfigDataType::Bool: return value.TryGetBool(flag);
    case ConfigDataType::Str: return length >= item.min && (item.max < 0 || length <= item.max);
    case ConfigDataType::Dbl: return value.TryParseDouble(number, item.min, item.max);
    default: return value.TryParseDouble(number, item.min, item.max) && number == std::floor(number);
    }
}

WString ConfigMetaData::Describe(const Item& item)
{
    const TypeRow& row = GetRow(item.type);
    WString line = WString::Format(L"%s: %s, default %s%s", item.key, row.name, GetDefault(item), GetLimits(item, row));
    if (!item.description.IsEmpty())
        line += L"; " + item.description;
    return line;
}

void ConfigMetaData::GetDocument(WStringArray& lines) const
{
    const std::lock_guard guard(lock);
    lines.Clear();
    for (const auto& [section, keys] : sections) {
        lines.Add(L"[" + section + L"]");
        for (const auto& [key, item] : keys)
            lines.Add(Describe(item));
    }
}
