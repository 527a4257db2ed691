#include "Instrument/StatusTable.h"

#include "Instrument/IniFile.h"
#include "Instrument/NameOrder.h"
#include "Instrument/StatusItemType.h"
#include "Services/Clock.h"
#include "Text/HostError.h"
#include "Text/NumberText.h"
#include "Text/ReferenceText.h"

#include <algorithm>
#include <limits>
#include <map>
#include <mutex>
#include <optional>

using ReferenceText::Fault;

namespace {

constexpr unsigned int fileCheckInterval = 50; // ms
constexpr int maxFormattedItems = 100;
constexpr wchar_t section_lc[] = L"Items";

struct Item
{
    StatusType type = ST_None;
    WString text;
    std::function<WString()> read; // of a live item, instead of the text

    bool IsLive() const { return static_cast<bool>(read); }
    WString GetText() const { return read ? read() : text; }
};

struct DelayedValue
{
    WString text;
    unsigned int due;
};

using Items = std::map<WString, Item, NameOrder>;

bool IsIntegerType(StatusType type)
{
    return type == ST_Int || type == ST_UInt || type == ST_UInt64;
}

bool IsInFile(const IniFile& file, const WString& name)
{
    WString text;
    return file.TryGet(section_lc, name, text);
}

/// Sets the items whose text in `current` differs from that in `former`, and drops those that only `former` has.
void TakeOver(Items& items, const IniFile& current, const IniFile& former)
{
    std::erase_if(items, [&](const auto& entry) {
        const auto& [name, item] = entry;
        return !item.IsLive() && IsInFile(former, name) && !IsInFile(current, name);
    });
    WStringArray names;
    current.GetKeys(section_lc, names);
    for (const WString& name : names) {
        WString text;
        WString formerText;
        current.TryGet(section_lc, name, text);
        if (former.TryGet(section_lc, name, formerText) && text == formerText)
            continue;
        Item item;
        WString reason;
        if (!TryParseStatusItem(text, item.type, item.text, reason))
            WholeFile::Fail(current.GetPath(), name + L": " + reason);
        if (Item& known = items[name]; !known.IsLive())
            known = item;
    }
}

/// True when the text is of the type, and the file can hold it.
bool Fits(const WString& name, StatusType type, const WString& text)
{
    const StatusItemType* row = FindStatusItemType(type);
    return row && row->fits(text) && IniFile::CanHold(section_lc, name, text);
}

} // namespace

struct StatusTable::Data
{
    std::mutex lock;
    Items items;
    std::map<WString, DelayedValue, NameOrder> delayed;
    std::unique_ptr<IniFile> file = std::make_unique<IniFile>(); // as this process last saw it
    unsigned int lastCheck = 0;

    // Called with the lock held.
    void Load(const std::string& path);
    void ReadChanges();
    void Refresh(unsigned int interval);
    StatusType GetTypeToSet(const WString& name, const WString& value) const;
    bool TrySet(const WString& name, const WString& value);
    bool TryAdd(const WString& name, StatusType type, const WString& value);
    void Save();

    // Take the lock, for as long as a copy of an item takes: live items are read without it.
    std::optional<Item> Find(const WString& name);
    std::optional<WString> FindText(const WString& name, StatusType type);
    std::optional<WString> FindWhole(const WString& name);
    bool TryExpand(const WString& name, WString& value, int& itemsLeft);
};

void StatusTable::Data::Load(const std::string& path)
{
    auto loaded = std::make_unique<IniFile>();
    loaded->Load(path);
    Items replacement;
    for (const auto& [name, item] : items)
        if (item.IsLive())
            replacement.emplace(name, item);
    TakeOver(replacement, *loaded, IniFile());
    items.swap(replacement);
    file.swap(loaded);
    delayed.clear();
    lastCheck = GetTickCount();
}

void StatusTable::Data::ReadChanges()
{
    if (!file->IsOutdated())
        return;
    auto current = std::make_unique<IniFile>();
    current->Load(file->GetPath());
    Items changed = items;
    TakeOver(changed, *current, *file);
    items.swap(changed);
    file.swap(current);
}

void StatusTable::Data::Refresh(unsigned int interval)
{
    const unsigned int now = GetTickCount();
    if (now - lastCheck >= interval) {
        lastCheck = now;
        try {
            ReadChanges();
        } catch (const HostException&) {
            // Another process or an editor is at work; what is known stays until the file can be read.
        }
    }
    for (auto entry = delayed.begin(); entry != delayed.end();) {
        if (static_cast<int>(now - entry->second.due) >= 0) {
            TrySet(entry->first, entry->second.text);
            entry = delayed.erase(entry);
        } else {
            ++entry;
        }
    }
}

bool StatusTable::Data::TryAdd(const WString& name, StatusType type, const WString& value)
{
    const WString text = value.Trim();
    if (!Fits(name, type, text))
        return false;
    items[name.Trim()] = {type, text, nullptr};
    return true;
}

/// The type of the item, or the one that a new item would get from the value; ST_None for a live item.
StatusType StatusTable::Data::GetTypeToSet(const WString& name, const WString& value) const
{
    const auto known = items.find(name.Trim());
    if (known == items.end())
        return GuessStatusType(value.Trim());
    return known->second.IsLive() ? ST_None : known->second.type;
}

bool StatusTable::Data::TrySet(const WString& name, const WString& value)
{
    return TryAdd(name, GetTypeToSet(name, value), value);
}

void StatusTable::Data::Save()
{
    const WholeFile::Lock fileLock(file->GetPath());
    ReadChanges();
    auto changed = std::make_unique<IniFile>(*file); // what could not be saved is not known as the file's
    for (const auto& [name, item] : items)
        if (!item.IsLive())
            changed->Set(section_lc, name, FindStatusItemType(item.type)->name + (L":" + item.text));
    changed->Save();
    file.swap(changed);
}

std::optional<Item> StatusTable::Data::Find(const WString& name)
{
    const std::lock_guard guard(lock);
    Refresh(fileCheckInterval);
    const auto found = items.find(name);
    if (found == items.end())
        return std::nullopt;
    return found->second;
}

std::optional<WString> StatusTable::Data::FindText(const WString& name, StatusType type)
{
    const std::optional<Item> item = Find(name);
    if (!item || item->type != type)
        return std::nullopt;
    return item->GetText();
}

std::optional<WString> StatusTable::Data::FindWhole(const WString& name)
{
    const std::optional<Item> item = Find(name);
    if (!item || !IsIntegerType(item->type))
        return std::nullopt;
    return item->GetText();
}

/// Appends the item's value. The count of items both ends a circle of references and bounds what many references may
/// cost.
bool StatusTable::Data::TryExpand(const WString& name, WString& value, int& itemsLeft)
{
    const std::optional<Item> item = Find(name);
    if (!item || itemsLeft-- == 0)
        return false;
    const WString text = item->GetText();
    std::wstring_view rest = text.View();
    ReferenceText::Reference found;
    while (item->type == ST_Formatted && (found = ReferenceText::Find(rest, L"S")).fault == Fault::None) {
        value.Append(rest.substr(0, found.start));
        if (!TryExpand(WString(found.name), value, itemsLeft))
            return false;
        rest.remove_prefix(found.end);
    }
    value.Append(rest);
    return true;
}

StatusTable::StatusTable() : data(std::make_unique<Data>()) {}

StatusTable::~StatusTable() = default;

void StatusTable::Load(const std::string& path)
{
    const std::lock_guard guard(data->lock);
    data->Load(path);
}

void StatusTable::Refresh()
{
    const std::lock_guard guard(data->lock);
    data->Refresh(0);
}

bool StatusTable::ContainsItem(const WString& name) const
{
    return data->Find(name).has_value();
}

int StatusTable::GetItemType(const WString& name) const
{
    const std::optional<Item> item = data->Find(name);
    return item ? item->type : ST_None;
}

bool StatusTable::TryGetBool(const WString& name, bool& value) const
{
    const std::optional<WString> text = data->FindText(name, ST_Bool);
    return text && text->TryGetBool(value);
}

bool StatusTable::TryGetDouble(const WString& name, double& value, double min, double max) const
{
    const std::optional<WString> text = data->FindText(name, ST_Double);
    return text && text->TryParseDouble(value, min, max);
}

bool StatusTable::TryGetString(const WString& name, WString& value) const
{
    const std::optional<WString> text = data->FindText(name, ST_String);
    if (text)
        value = *text;
    return text.has_value();
}

bool StatusTable::TryGetExitCode(const WString& name, ExitCode& value) const
{
    const std::optional<WString> text = data->FindText(name, ST_ExitCode);
    return text && ExitCode::TryParse(*text, value);
}

bool StatusTable::TryGetInt(const WString& name, int& value, int min, int max) const
{
    const std::optional<WString> text = data->FindWhole(name);
    return text && TryParseWhole(text->View(), value, min, max);
}

bool StatusTable::TryGetUInt(const WString& name, unsigned int& value, unsigned int min, unsigned int max) const
{
    const std::optional<WString> text = data->FindWhole(name);
    return text && TryParseWhole(text->View(), value, min, max);
}

bool StatusTable::TryGetFormattedString(const WString& name, WString& value) const
{
    WString expanded;
    int itemsLeft = maxFormattedItems;
    if (!data->TryExpand(name, expanded, itemsLeft))
        return false;
    value = std::move(expanded);
    return true;
}

bool StatusTable::TrySet(const WString& name, const WString& value)
{
    const std::lock_guard guard(data->lock);
    data->Refresh(fileCheckInterval);
    return data->TrySet(name, value);
}

bool StatusTable::TrySetAfter(const WString& name, const WString& value, unsigned int milliseconds)
{
    constexpr unsigned int longest = std::numeric_limits<int>::max(); // the clock wraps
    const std::lock_guard guard(data->lock);
    data->Refresh(fileCheckInterval);
    if (!Fits(name, data->GetTypeToSet(name, value), value.Trim()))
        return false;
    data->delayed[name] = {value, GetTickCount() + std::min(milliseconds, longest)};
    return true;
}

bool StatusTable::TryAdd(const WString& name, StatusType type, const WString& value)
{
    const std::lock_guard guard(data->lock);
    return data->TryAdd(name, type, value);
}

void StatusTable::AddLive(const WString& name, StatusType type, std::function<WString()> read)
{
    const std::lock_guard guard(data->lock);
    data->items[name] = {type, WString(), std::move(read)};
}

void StatusTable::Save()
{
    const std::lock_guard guard(data->lock);
    data->Save();
}

void StatusTable::GetNames(WStringArray& names) const
{
    const std::lock_guard guard(data->lock);
    data->Refresh(fileCheckInterval);
    names.Clear();
    for (const auto& [name, item] : data->items)
        names.Add(name);
}
