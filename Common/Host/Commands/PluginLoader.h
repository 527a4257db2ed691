#pragma once

#include "HostApi.h"
#include "Text/WString.h"

#include <string>
#include <vector>

/// Loads plug-ins into the process, for as long as it lives. Not locked: done at start, as CommandRegistry is filled.
class HOST_API PluginLoader
{
public:
    /// Loads the file, selects its entries in its registry and adds its commands and tests to CommandRegistry. The
    /// registry may be that of a plug-in which the file is linked to. Throws HostException(FileError) with the path and
    /// the reason (the dynamic loader's, what is missing in it, or which name is taken already); what was added before
    /// that stays.
    static void Load(const std::string& path);

    /// The folder of libHost.so, where the plug-ins that come with it are, and what a new data folder is made from.
    /// Throws HostException(FileError) when it has been moved away.
    static std::string GetFolder();

    /// The files loaded so far, in the order of loading.
    static const std::vector<std::string>& GetFiles();

    /// Told by a table of functions about each one that it was asked to add, so that a plug-in which brings a name that
    /// is taken is refused. Nothing unless a plug-in is being loaded.
    static void TellFunction(const WString& name, bool isAdded);
};
