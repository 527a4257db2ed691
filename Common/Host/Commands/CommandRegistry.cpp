#include "Commands/CommandRegistry.h"

#include "Text/CharacterCase.h"

#include <algorithm>
#include <atomic>

namespace {
struct Registry
{
    std::atomic<void (*)()> addLater = nullptr;
    std::vector<CommandRegistry::Entry> entries;
    std::vector<AutomaticTestEntry> tests;
};

Registry& GetRegistry()
{
    static Registry registry;
    return registry;
}
/// Adds what is still to be added; false when there is nothing.
bool TryAddLater()
{
    const auto add = GetRegistry().addLater.exchange(nullptr);
    if (add)
        add();
    return add != nullptr;
}
} // namespace

bool CommandRegistry::Add(CommandFactory factory, const std::string& file)
{
    const std::unique_ptr<CommandBase> command(factory());
    const WString name = command->GetName();
    if (FindOrNull(name))
        return false;
    GetRegistry().entries.push_back({name, command->GetCommandId(), factory, file, command->GetRecord()});
    return true;
}

void CommandRegistry::AddTest(const AutomaticTestEntry& entry)
{
    GetRegistry().tests.push_back(entry);
}

void CommandRegistry::AddLater(void (*add)())
{
    GetRegistry().addLater = add;
}

const CommandRegistry::Entry* CommandRegistry::FindOrNull(const WString& name)
{
    const auto find = [&]() -> const Entry* {
        const auto& entries = GetRegistry().entries;
        const auto found = std::ranges::find_if(
            entries, [&](const Entry& entry) { return EqualsIgnoreCase(entry.name.View(), name.View()); });
        return found == entries.end() ? nullptr : &*found;
    };
    const Entry* const entry = find();
    return entry || !TryAddLater() ? entry : find();
}

const std::vector<CommandRegistry::Entry>& CommandRegistry::GetEntries()
{
    TryAddLater();
    return GetRegistry().entries;
}

const std::vector<AutomaticTestEntry>& CommandRegistry::GetTests()
{
    return GetRegistry().tests;
}
