#include "Instrument/OS9EventManager.h"

#include "Instrument/OS9EventTable.h"

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <string_view>
#include <utility>

static_assert(OS9EventManager::capacity == OS9EventTable::capacity);
static_assert(OS9EventManager::maxNameLength + 1 == OS9EventSlot::nameCapacity);

namespace {

bool IsName(const WString& text)
{
    return !text.IsEmpty() && text.Length() <= OS9EventManager::maxNameLength && text.IndexOf(WString(1, 0)) < 0;
}

std::wstring_view GetName(const OS9EventSlot& slot)
{
    return {slot.name, wcsnlen(slot.name, OS9EventSlot::nameCapacity)};
}

template <typename Table>
auto* Find(Table& table, const WString& name)
{
    const auto found = std::ranges::find_if(
        table.slots, [&](const OS9EventSlot& slot) { return slot.isNamed && name.View() == GetName(slot); });
    return found == std::end(table.slots) ? nullptr : found;
}

std::size_t IndexOf(const OS9EventTable& table, const OS9EventSlot& slot)
{
    return static_cast<std::size_t>(&slot - table.slots);
}

/// References of all processes.
int CountReferences(const OS9EventTable& table, const OS9EventSlot& slot)
{
    int count = 0;
    for (const OS9EventTable::References& references : table.references)
        count += references[IndexOf(table, slot)];
    return count;
}

OS9EventSlot* FindFree(OS9EventTable& table)
{
    for (OS9EventSlot& slot : table.slots)
        if (!slot.isNamed && CountReferences(table, slot) == 0)
            return &slot;
    return nullptr;
}

} // namespace

OS9EventData::OS9EventData(std::shared_ptr<OS9EventSegment> segment, std::size_t index)
    : segment(std::move(segment)),
      value(this->segment->GetTable().slots[index].value),
      references(this->segment->GetOwnReferences()[index])
{
    ++references;
}

int OS9EventData::Read() const noexcept
{
    return segment->IsWhole() ? value.load() : 0;
}

void OS9EventData::Write(int number) noexcept
{
    if (segment->IsWhole())
        value.store(number);
}

void OS9EventData::ReleaseReference() noexcept
{
    if (segment->IsWhole() && --references == 0)
        segment->TryGiveRowBack();
    delete this;
}

OS9EventData* OS9EventManager::GetOS9Event(const WString& name)
{
    const OS9EventTableLock lock;
    const OS9EventTable& table = lock.segment->GetTable();
    const OS9EventSlot* slot = Find(table, name);
    return slot ? new OS9EventData(lock.segment, IndexOf(table, *slot)) : nullptr;
}

bool OS9EventManager::TryCreate(const WString& name, int value)
{
    if (!IsName(name))
        return false;
    const OS9EventTableLock lock;
    OS9EventTable& table = lock.segment->GetTable();
    if (Find(table, name))
        return false;
    OS9EventSlot* slot = FindFree(table);
    if (!slot) {
        lock.segment->ForgetEndedProcesses();
        slot = FindFree(table);
    }
    if (!slot)
        return false;
    slot->value = value;
    std::wmemcpy(slot->name, name.ToCString(), name.Length() + 1);
    slot->isNamed = 1;
    return true;
}

bool OS9EventManager::TryDelete(const WString& name)
{
    const OS9EventTableLock lock;
    OS9EventSlot* slot = Find(lock.segment->GetTable(), name);
    if (slot)
        slot->isNamed = 0;
    return slot != nullptr;
}

int OS9EventManager::GetReferenceCount(const WString& name)
{
    const OS9EventTableLock lock;
    const OS9EventTable& table = lock.segment->GetTable();
    const OS9EventSlot* slot = Find(table, name);
    if (!slot)
        return -1;
    lock.segment->ForgetEndedProcesses();
    return CountReferences(table, *slot);
}

void OS9EventManager::GetNames(WStringArray& names)
{
    names.Clear();
    const OS9EventTableLock lock;
    for (const OS9EventSlot& slot : lock.segment->GetTable().slots)
        if (slot.isNamed)
            names.Add(WString(GetName(slot)));
    names.Sort();
}
