#include "Start.h"

#include "BuiltIns/BuiltIns.h"
#include "Commands/PluginLoader.h"
#include "Commands/RunObserver.h"
#include "Instrument/System.h"
#include "LocalTime.h"
#include "Report.h"
#include "RunningScript.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"

#include <filesystem>

/// What stands before a line of the error log: the time and the place.
static WString MakeErrorLogPrefix()
{
    const CommandRun* const run = CommandRunner::GetRunning();
    const WString command = run ? run->outcome.command + L": " : WString();
    return FormatDateAndTime() + L" " + GetRunningPlace() + command;
}

/// Most runs do without the command Check and completion, and need not load them.
static void LoadScriptTools()
try {
    const std::string file = PluginLoader::GetFolder() + "/ScriptTools.dll";
    if (std::filesystem::exists(file))
        PluginLoader::Load(file);
} catch (const HostException& failure) {
    WriteErrorLine(L"labsh: warning: " + failure.GetMessage());
}

void Start(const Arguments& arguments)
{
    const std::string folder = PluginLoader::GetFolder();
    if (arguments.dataFolder.empty())
        throw HostException(HostError::FileError, L"no data folder: give --data, or set LABSH_HOME or HOME");
    for (const WString& report : System::Start(arguments.dataFolder, folder + "/Profile"))
        WriteErrorLine(L"labsh: warning: " + report);
    if (ToUpper(L'\u00E4') == L'\u00E4')
        WriteErrorLine(L"labsh: warning: neither the locale C.UTF-8 nor en_US.UTF-8 is installed: "
                       L"only ASCII letters have two cases");
    System::errorLog.SetPrefix(MakeErrorLogPrefix);
    AddBuiltIns();
    PluginLoader::Load(folder + "/ExpressionEvaluator.dll");
    for (const std::string& plugin : arguments.plugins)
        PluginLoader::Load(plugin);
    CommandRegistry::AddLater(LoadScriptTools);
}

void LoadAssistant()
{
    CommandRegistry::GetEntries(); // which come with it
}
