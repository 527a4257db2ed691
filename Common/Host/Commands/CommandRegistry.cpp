#include "Commands/CommandRegistry.h"

#include "Text/CharacterCase.h"

#include <algorithm>

namespace {
struct Registry
{
    std::vector<CommandRegistry::Entry> entries;
    std::vector<AutomaticTestEntry> tests;
};

Registry& GetRegistry()
{
    static Registry registry;
    return registry;
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

const CommandRegistry::Entry* CommandRegistry::FindOrNull(const WString& name)
{
    const auto& entries = GetEntries();
    const auto found = std::ranges::find_if(
        entries, [&](const Entry& entry) { return EqualsIgnoreCase(entry.name.View(), name.View()); });
    return found == entries.end() ? nullptr : &*found;
}

const std::vector<CommandRegistry::Entry>& CommandRegistry::GetEntries()
{
    return GetRegistry().entries;
}

const std::vector<AutomaticTestEntry>& CommandRegistry::GetTests()
{
    return GetRegistry().tests;
}
