#include "Instrument/StatusTable.h"

#include "Instrument/IniFile.h"
#include "Instrument/NameOrder.h"
#include "Instrument/StatusItemType.h"
#include "Services/Clock.h"
#include "Text/Abort.h"
#include "Text/HostError.h"
#include "Text/ReferenceText.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <utility>
#include <vector>

using ReferenceText::Fault;

namespace {

constexpr unsigned int fileCheckInterval = 50; // ms
constexpr int maxFormattedItems = 100;
constexpr wchar_t section[] = L"Items";

struct Item
{
    StatusType type = ST_None;
    WString text;
    std::function<WString()> read; // of a live item, instead of the text

    bool IsLive() const { return static_cast<bool>(read); }
};

struct DelayedValue
{
    WString text;
    unsigned int due;
    unsigned int travel = 0;    // for so many ms before it is due the item is on its way there
    std::optional<double> from; // where that began
};

using Items = std::map<WString, Item, NameOrder>;

bool IsInFile(const IniFile& file, const WString& name)
{
    WString text;
    return file.TryGet(section, name, text);
}

/// Sets the items whose text in `current` differs from that in `former`, and drops those that only `former` has. Yields
/// the lines that do not fit, whose items stay as they are.
std::vector<IniFile::Fault> TakeOver(Items& items, const IniFile& current, const IniFile& former)
{
    std::erase_if(items, [&](const auto& entry) {
        const auto& [name, item] = entry;
        return !item.IsLive() && IsInFile(former, name) && !IsInFile(current, name);
    });
    std::vector<IniFile::Fault> faults;
    WStringArray names;
    current.GetKeys(section, names);
    std::size_t count = 0;
    for (const WString& name : names) {
        if (++count % 0x1000 == 0) // an item costs as much as many characters
            Abort::ThrowIfRequested();
        WString text;
        WString formerText;
        current.TryGet(section, name, text);
        if (former.TryGet(section, name, formerText) && text == formerText)
            continue;
        Item item;
        WString reason;
        if (!TryParseStatusItem(text, item.type, item.text, reason))
            faults.push_back({current.GetLine(section, name), name + L": " + reason});
        else if (const auto known = items.find(name); known == items.end() || !known->second.IsLive())
            items[name] = item;
    }
    return faults;
}

/// Appends the item's value. The count of items both ends a circle of references and bounds what many references may
/// cost.
bool TryExpand(const Items& items, const Item& item, WString& value, int& itemsLeft)
{
    if (itemsLeft-- == 0)
        return false;
    const WString live = item.IsLive() ? item.read() : WString();
    std::wstring_view rest = item.IsLive() ? live.View() : item.text.View();
    ReferenceText::Reference found;
    while (item.type == ST_Formatted && (found = ReferenceText::Find(rest, L"S")).fault == Fault::None) {
        value.Append(rest.substr(0, found.start));
        const auto inner = items.find(WString(found.name));
        if (inner == items.end() || !TryExpand(items, inner->second, value, itemsLeft))
            return false;
        rest.remove_prefix(found.end);
    }
    value.Append(rest);
    return true;
}

/// True when the text is of the type, and the file can hold it.
bool Fits(const WString& name, StatusType type, const WString& text)
{
    const StatusItemType* row = FindStatusItemType(type);
    return row && row->fits(text) && IniFile::CanHold(section, name, text);
}

bool IsNumber(StatusType type)
{
    return type == ST_Double || type == ST_Int || type == ST_UInt || type == ST_UInt64;
}

} // namespace

struct StatusTable::Data
{
    std::mutex lock;
    std::shared_ptr<const Items> items = std::make_shared<Items>(); // replaced as a whole: who holds it sees one moment
    std::map<WString, DelayedValue, NameOrder> delayed;
    std::unique_ptr<IniFile> file = std::make_unique<IniFile>(); // as this process last saw it
    std::set<WString, NameOrder> changed;                        // that are not as the file has them
    std::vector<IniFile::Fault> faults;
    unsigned int lastCheck = 0;

    // Called with the lock held.
    void Load(const std::string& path, const std::string& defaults);
    void ReadChanges();
    void Refresh(unsigned int interval);
    void Put(const WString& name, Item item);
    void Change(const WString& name, std::optional<Item> item);
    void SetDue(unsigned int now);
    void Travel(const WString& name, DelayedValue& value, unsigned int now);
    void StopTravel(const WString& name);
    StatusType GetTypeToSet(const WString& name, const WString& value) const;
    bool TrySet(const WString& name, const WString& value);
    bool TryAdd(const WString& name, StatusType type, const WString& value);
    void Save();
    void DropChanges();

    /// Takes the lock, for no longer than it takes to get hold of the items: live ones are read without it.
    std::shared_ptr<const Items> Look();
};

void StatusTable::Data::Load(const std::string& path, const std::string& defaults)
{
    auto live = std::make_shared<Items>(*items);
    std::erase_if(*live, [](const auto& entry) { return !entry.second.IsLive(); });
    items = live;
    delayed.clear();
    changed.clear();
    faults.clear();
    lastCheck = GetTickCount();
    file->Load(path, defaults);
    faults = file->GetFaults();
    std::ranges::copy(TakeOver(*live, *file, IniFile()), std::back_inserter(faults));
    std::ranges::sort(faults, {}, &IniFile::Fault::line);
}

void StatusTable::Data::ReadChanges()
{
    if (!file->IsOutdated())
        return;
    auto current = std::make_unique<IniFile>();
    current->Load(file->GetPath());
    auto changed = std::make_shared<Items>(*items);
    TakeOver(*changed, *current, *file);
    items = std::move(changed);
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
    SetDue(now);
}

void StatusTable::Data::SetDue(unsigned int now)
{
    for (auto entry = delayed.begin(); entry != delayed.end();) {
        auto& [name, value] = *entry;
        if (static_cast<int>(now - value.due) >= 0) {
            TrySet(name, value.text);
            entry = delayed.erase(entry);
        } else {
            Travel(name, value, now);
            ++entry;
        }
    }
}

/// Brings the item as far on its way as it is by now.
void StatusTable::Data::Travel(const WString& name, DelayedValue& value, unsigned int now)
{
    const unsigned int left = value.due - now;
    const auto item = items->find(name);
    double current = 0;
    double target = 0;
    if (value.travel == 0 || left > value.travel || item == items->end() ||
        !item->second.text.TryParseDouble(current) || !value.text.TryParseDouble(target))
        return;
    if (!value.from)
        value.from = current;
    const double share = static_cast<double>(left) / value.travel;
    const double reached = *value.from * share + target * (1 - share);
    const WString text = item->second.type == ST_Double ? WString::Format(L"%.10g", reached)
                                                        : WString::Format(L"%.0f", std::round(reached) + 0.0); // no -0
    if (text != item->second.text)
        TrySet(name, text);
}

void StatusTable::Data::StopTravel(const WString& name)
{
    const auto found = delayed.find(name.Trim());
    if (found != delayed.end() && found->second.from)
        delayed.erase(found);
}

void StatusTable::Data::Put(const WString& name, Item item)
{
    auto changed = std::make_shared<Items>(*items);
    (*changed)[name] = std::move(item);
    items = std::move(changed);
}

/// Sets the item, or deletes it, for Save to write.
void StatusTable::Data::Change(const WString& name, std::optional<Item> item)
{
    auto copy = std::make_shared<Items>(*items);
    if (item)
        (*copy)[name] = *std::move(item);
    else
        copy->erase(name);
    changed.insert(name);
    items = std::move(copy);
}

bool StatusTable::Data::TryAdd(const WString& name, StatusType type, const WString& value)
{
    const WString text = value.Trim();
    if (!Fits(name, type, text))
        return false;
    Change(name.Trim(), Item{type, text, nullptr});
    return true;
}

/// The type of the item, or the one that a new item would get from the value; ST_None for a live item.
StatusType StatusTable::Data::GetTypeToSet(const WString& name, const WString& value) const
{
    const auto known = items->find(name.Trim());
    if (known == items->end())
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
    auto current = std::make_unique<IniFile>(*file); // what cannot be saved is not known as the file's
    for (const WString& name : changed) {
        if (const auto item = items->find(name); item == items->end())
            current->TryDelete(section, name);
        else
            current->Set(section, name, FindStatusItemType(item->second.type)->name + (L":" + item->second.text));
    }
    current->Save();
    file.swap(current);
    changed.clear();
}

/// Makes what is changed again what the file says.
void StatusTable::Data::DropChanges()
{
    auto former = std::make_shared<Items>(*items);
    for (const WString& name : changed) {
        former->erase(name);
        Item item;
        WString text;
        WString reason;
        if (file->TryGet(section, name, text) && TryParseStatusItem(text, item.type, item.text, reason))
            (*former)[name] = item;
    }
    items = std::move(former);
    changed.clear();
}

std::shared_ptr<const Items> StatusTable::Data::Look()
{
    const std::lock_guard guard(lock);
    Refresh(fileCheckInterval);
    return items;
}

StatusTable::StatusTable() : data(std::make_unique<Data>()) {}

StatusTable::~StatusTable() = default;

void StatusTable::Load(const std::string& path, const std::string& defaults)
{
    const std::lock_guard guard(data->lock);
    data->Load(path, defaults);
}

void StatusTable::GetFaults(WStringArray& faults) const
{
    const std::lock_guard guard(data->lock);
    faults.Clear();
    for (const IniFile::Fault& fault : data->faults)
        faults.Add(data->file->Describe(fault));
}

void StatusTable::Refresh()
{
    const std::lock_guard guard(data->lock);
    data->Refresh(0);
}

bool StatusTable::TryGet(const WString& name, StatusValue& item) const
{
    const std::shared_ptr<const Items> items = data->Look();
    const auto found = items->find(name);
    if (found == items->end())
        return false;
    WString text;
    int itemsLeft = maxFormattedItems;
    item.type = found->second.type;
    item.text.reset();
    if (TryExpand(*items, found->second, text, itemsLeft))
        item.text = std::move(text);
    return true;
}

bool StatusTable::ContainsItem(const WString& name) const
{
    return data->Look()->contains(name);
}

bool StatusTable::IsLive(const WString& name) const
{
    const auto items = data->Look();
    const auto item = items->find(name);
    return item != items->end() && item->second.IsLive();
}

int StatusTable::GetItemType(const WString& name) const
{
    const std::shared_ptr<const Items> items = data->Look();
    const auto found = items->find(name);
    return found == items->end() ? ST_None : found->second.type;
}

bool StatusTable::TryGetBool(const WString& name, bool& value) const
{
    StatusValue item;
    return TryGet(name, item) && item.TryGetBool(value);
}

bool StatusTable::TryGetDouble(const WString& name, double& value, double min, double max) const
{
    StatusValue item;
    return TryGet(name, item) && item.TryGetDouble(value, min, max);
}

bool StatusTable::TryGetString(const WString& name, WString& value) const
{
    StatusValue item;
    return TryGet(name, item) && item.TryGetString(value);
}

bool StatusTable::TryGetExitCode(const WString& name, ExitCode& value) const
{
    StatusValue item;
    return TryGet(name, item) && item.TryGetExitCode(value);
}

bool StatusTable::TryGetInt(const WString& name, int& value, int min, int max) const
{
    StatusValue item;
    return TryGet(name, item) && item.TryGetInt(value, min, max);
}

bool StatusTable::TryGetUInt(const WString& name, unsigned int& value, unsigned int min, unsigned int max) const
{
    StatusValue item;
    return TryGet(name, item) && item.TryGetUInt(value, min, max);
}

bool StatusTable::TryGetFormattedString(const WString& name, WString& value) const
{
    StatusValue item;
    return TryGet(name, item) && item.TryGetFormattedString(value);
}

bool StatusTable::TrySet(const WString& name, const WString& value)
{
    const std::lock_guard guard(data->lock);
    data->Refresh(fileCheckInterval);
    if (!data->TrySet(name, value))
        return false;
    data->StopTravel(name);
    return true;
}

bool StatusTable::TryDelete(const WString& name)
{
    const std::lock_guard guard(data->lock);
    data->Refresh(fileCheckInterval);
    const auto found = data->items->find(name);
    if (found == data->items->end() || found->second.IsLive())
        return false;
    data->delayed.erase(name);
    data->Change(name, std::nullopt);
    return true;
}

bool StatusTable::TrySetAfter(const WString& name, const WString& value, unsigned int milliseconds, unsigned int travel)
{
    constexpr unsigned int longest = std::numeric_limits<int>::max(); // the clock wraps
    const std::lock_guard guard(data->lock);
    data->Refresh(fileCheckInterval);
    const StatusType type = data->GetTypeToSet(name, value);
    if (!Fits(name, type, value.Trim()) || (travel != 0 && !IsNumber(type)))
        return false;
    const unsigned int now = GetTickCount();
    const unsigned int delay = std::min(milliseconds, longest);
    const unsigned int way = std::min(travel, longest - delay);
    data->delayed[name] = {value.Trim(), now + delay + way, way, std::nullopt};
    data->SetDue(now);
    return true;
}

void StatusTable::SetDelayed()
{
    const std::lock_guard guard(data->lock);
    data->Refresh(0);
    for (const auto& [name, value] : std::exchange(data->delayed, {}))
        data->TrySet(name, value.text);
}

bool StatusTable::TryAdd(const WString& name, StatusType type, const WString& value)
{
    const std::lock_guard guard(data->lock);
    return data->TryAdd(name, type, value);
}

void StatusTable::AddLive(const WString& name, StatusType type, std::function<WString()> read)
{
    const std::lock_guard guard(data->lock);
    data->Put(name, {type, WString(), std::move(read)});
}

void StatusTable::Save()
{
    const std::lock_guard guard(data->lock);
    try {
        data->Save();
    } catch (...) {
        data->DropChanges();
        throw;
    }
}

void StatusTable::GetNames(WStringArray& names) const
{
    names.Clear();
    const std::shared_ptr<const Items> items = data->Look();
    for (const auto& [name, item] : *items)
        names.Add(name);
}
