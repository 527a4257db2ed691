#pragma once

#include "BuiltIns/BuiltIns.h"
#include "Commands/PluginLoader.h"
#include "Commands/ScriptAssistant.h"
#include "Instrument/System.h"
#include "Support/TemporaryFolder.h"

/// A new bench, and the plug-ins as they are loaded, which is done once for the process.
class LoadedTools
{
public:
    LoadedTools()
    {
        System::Start(folder.GetPath(), SOURCE_DIR "/Shell/Profile");
        static const bool isLoaded = [] {
            AddBuiltIns();
            PluginLoader::Load(PLUGIN_FILE);
            PluginLoader::Load(SCRIPT_TOOLS_FILE);
            return true;
        }();
        static_cast<void>(isLoaded);
    }

    const ScriptAssistant* operator->() const { return ScriptAssistant::GetOrNull(); }

private:
    const TemporaryFolder folder;
};
