#pragma once

#include "HostApi.h"

#include <string>

/// Loads plug-ins into the process, for as long as it lives. Not locked: done at start, as CommandRegistry is filled.
class HOST_API PluginLoader
{
public:
    /// Loads the file, selects its entries in its registry and adds its commands and tests to CommandRegistry. Throws
    /// HostException(FileError) with the path and the reason (the dynamic loader's, or what is missing in it); what was
    /// added before that stays.
    static void Load(const std::string& path);
};
