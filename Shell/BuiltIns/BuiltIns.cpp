#include "BuiltIns/BuiltIns.h"

#include "Commands/CommandRegistry.h"

std::vector<const CommandRecord*> GetBuiltIns()
{
    std::vector<const CommandRecord*> records(GetBenchCommands().begin(), GetBenchCommands().end());
    records.push_back(&watch_gb);
    return records;
}

void AddBuiltIns()
{
    for (const CommandRecord* record : GetBuiltIns())
        CommandRegistry::Add(record->factory, "");
}
