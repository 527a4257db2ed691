#include "BuiltIns/ItemCommand.h"
#include "Instrument/OS9EventManager.h"

#include <memory>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Event [<pattern>]",
    L"       Event <name>[=<number>]",
    L"       Event -z <name>",
    L" Lists the events that match the pattern, or all; shows an event; sets one,",
    L" making it when there is none of that name; or deletes one.",
    L"Options:",
    L" -z     Zap/Delete the event.",
    L" -json  Write what is listed or shown as a JSON object.",
};

constexpr OptionRecord options_lc[] = {ItemCommand::zap, ItemCommand::json};

struct ReferenceEnder
{
    void operator()(OS9EventData* event) const noexcept { event->ReleaseReference(); }
};
using EventReference = std::unique_ptr<OS9EventData, ReferenceEnder>;

class Event : public ItemCommand
{
public:
    Event() : ItemCommand(event_gb) {}

protected:
    void GetNames(WStringArray& names) override { OS9EventManager::GetNames(names); }
    bool TryGet(const WString& name, WString& value) override;
    void Set(const WString& name, const WString& value) override;
    bool TryDelete(const WString& name) override { return OS9EventManager::TryDelete(name); }
};

bool Event::TryGet(const WString& name, WString& value)
{
    const EventReference event(OS9EventManager::GetOS9Event(name));
    if (event)
        value = WString::Format(L"%d", event->Read());
    return event != nullptr;
}

void Event::Set(const WString& name, const WString& value)
{
    const int number = ReadInt32(value);
    const auto tryWrite = [&] {
        const EventReference event(OS9EventManager::GetOS9Event(name));
        if (event)
            event->Write(number);
        return event != nullptr;
    };
    // Another shell may be faster to make it.
    if (!tryWrite() && !OS9EventManager::TryCreate(name, number) && !tryWrite())
        Fail(failed, L"The event cannot be made");
}

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Event}, {ArgumentKind::Text, L"=", true, true}};
} // namespace

constexpr CommandRecord event_gb = {L"Event", 2004, Create<Event>, usage_lc, options_lc, 0, arguments_lc, {0, 1}};
