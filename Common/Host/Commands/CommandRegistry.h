#pragma once

#include "Commands/AutomaticTestEntry.h"
#include "Commands/CommandBase.h"
#include "Commands/CommandRecord.h"
#include "HostApi.h"
#include "Text/WString.h"

#include <memory>
#include <string>
#include <vector>

/// The commands and automatic tests that can be run, by name in any case. Filled at start, and then read by any thread.
class HOST_API CommandRegistry
{
public:
    struct Entry
    {
        WString name;
        unsigned int commandId;
        CommandFactory factory;
        std::string file;            // the file of the plug-in it came from; empty for the shell's own
        const CommandRecord* record; // null when the command has none
    };

    /// Makes one command to ask for its name and id, and adds it. A name already taken is refused with false.
    static bool Add(CommandFactory factory, const std::string& file);
    static void AddTest(const AutomaticTestEntry& entry);
    /// Commands that are added when they are first needed: `add` is called once, when a name is not found, or all
    /// commands are asked for: as GetEntries does, which comes before threads run commands at once.
    static void AddLater(void (*add)());
    /// Null when there is none of that name; valid until the next Add.
    static const Entry* FindOrNull(const WString& name);
    static const std::vector<Entry>& GetEntries();
    static const std::vector<AutomaticTestEntry>& GetTests();
};
