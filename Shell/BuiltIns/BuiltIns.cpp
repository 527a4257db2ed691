#include "BuiltIns/BuiltIns.h"

#include "Commands/CommandRegistry.h"

std::vector<const CommandRecord*> GetBuiltIns()
{
    std::vector<const CommandRecord*> records = {&watch_gb};
    records.insert(records.end(), GetBenchCommands().begin(), GetBenchCommands().end());
    return records;
}

void AddBuiltIns()
{
    for (const CommandRecord* record : GetBuiltIns())
        CommandRegistry::Add(record->factory, "");
}
