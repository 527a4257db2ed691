#include "Instrument/OS9EventManager.h"

#include "Instrument/OS9EventTable.h"

static_assert(OS9EventManager::maxNameLength + 1 == OS9EventSlot::nameCapacity);

namespace {

bool IsName(const WString& text)
{
    return !text.IsEmpty() && text.Length() <= OS9EventManager::maxNameLength && text.IndexOf(WString(1, 0)) < 0;
}

OS9EventSlot* Find(OS9EventTable& table, const WString& name)
{
    for (OS9EventSlot& slot : table.slots)
        if (slot.state == OS9EventSlot::Named && name == slot.name)
            return &slot;
    return nullptr;
}

OS9EventSlot* FindFree(OS9EventTable& table)
{
    for (OS9EventSlot& slot : table.slots)
        if (slot.state == OS9EventSlot::Free)
            return &slot;
    return nullptr;
}

} // namespace

int OS9EventData::Read() const noexcept
{
    return slot.value.load();
}

void OS9EventData::Write(int value) noexcept
{
    slot.value.store(value);
}

void OS9EventData::ReleaseReference() noexcept
{
    {
        const OS9EventTableLock lock(*OS9EventTable::Get());
        if (--slot.references == 0 && slot.state == OS9EventSlot::Deleted)
            slot.state = OS9EventSlot::Free;
    }
    delete this;
}

OS9EventData* OS9EventManager::GetOS9Event(const WString& name)
{
    OS9EventTable* table = OS9EventTable::Get();
    if (!table)
        return nullptr;
    const OS9EventTableLock lock(*table);
    OS9EventSlot* slot = Find(*table, name);
    if (!slot)
        return nullptr;
    auto* event = new OS9EventData(*slot);
    ++slot->references;
    return event;
}

bool OS9EventManager::TryCreate(const WString& name, int value)
{
    OS9EventTable* table = OS9EventTable::Get();
    if (!table || !IsName(name))
        return false;
    const OS9EventTableLock lock(*table);
    OS9EventSlot* slot = Find(*table, name) ? nullptr : FindFree(*table);
    if (!slot)
        return false;
    slot->value = value;
    slot->references = 0;
    std::wmemcpy(slot->name, name.ToCString(), name.Length() + 1);
    slot->state = OS9EventSlot::Named;
    return true;
}

bool OS9EventManager::TryDelete(const WString& name)
{
    OS9EventTable* table = OS9EventTable::Get();
    if (!table)
        return false;
    const OS9EventTableLock lock(*table);
    OS9EventSlot* slot = Find(*table, name);
    if (!slot)
        return false;
    slot->state = slot->references == 0 ? OS9EventSlot::Free : OS9EventSlot::Deleted;
    return true;
}

int OS9EventManager::GetReferenceCount(const WString& name)
{
    OS9EventTable* table = OS9EventTable::Get();
    if (!table)
        return -1;
    const OS9EventTableLock lock(*table);
    const OS9EventSlot* slot = Find(*table, name);
    return slot ? slot->references : -1;
}

void OS9EventManager::GetNames(WStringArray& names)
{
    names.Clear();
    OS9EventTable* table = OS9EventTable::Get();
    if (!table)
        return;
    const OS9EventTableLock lock(*table);
    for (const OS9EventSlot& slot : table->slots)
        if (slot.state == OS9EventSlot::Named)
            names.Add(slot.name);
    names.Sort();
}
