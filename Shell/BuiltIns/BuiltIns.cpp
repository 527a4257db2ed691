#include "BuiltIns/BuiltIn.h"
#include "Commands/CommandRegistry.h"

// Each stands in the file of its name.
CommandBase* CreateAssertFail();
CommandBase* CreateConfig();
CommandBase* CreateEcho();
CommandBase* CreateEvent();
CommandBase* CreateExit();
CommandBase* CreateHelp();
CommandBase* CreateLog();
CommandBase* CreatePlugins();
CommandBase* CreateRun();
CommandBase* CreateStatus();
CommandBase* CreateTest();
CommandBase* CreateUsage();
CommandBase* CreateWait();

static constexpr CommandFactory factories_lc[] = {
    CreateAssertFail,
    CreateConfig,
    CreateEcho,
    CreateEvent,
    CreateExit,
    CreateHelp,
    CreateLog,
    CreatePlugins,
    CreateRun,
    CreateStatus,
    CreateTest,
    CreateUsage,
    CreateWait,
};

void AddBuiltIns()
{
    for (const CommandFactory factory : factories_lc)
        CommandRegistry::Add(factory, "");
}
