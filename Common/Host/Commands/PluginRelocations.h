#pragma once

class PluginTables;

/// Checks the relocations of a plug-in, and the functions that are called when it is loaded and at the end. Throws
/// PluginFault.
void CheckPluginRelocations(const PluginTables& tables);
