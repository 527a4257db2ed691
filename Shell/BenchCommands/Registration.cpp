// BenchCommands.dll: the shell's commands, registered while it is loaded, for programs that run command lines
// themselves.

#include "BuiltIns/BuiltIns.h"
#include "DllRegistryUtils.h"

static const bool areAdded_lc = [] {
    for (const CommandRecord* record : GetBenchCommands())
        AddToCommandVector{record->factory};
    return true;
}();
