#pragma once

#include "Commands/AutomaticTestEntry.h"
#include "Commands/CommandBase.h"
#include "ExpressionEvaluatorApi.h"

#include <string>

// What this shared object offers to the host. Several shared objects may register in one registry, so each registration
// carries the file name of the one that it comes from, and the host selects a file before it enumerates. All of it is
// for one thread.

/// The factory at `index` in the selected list, null at the end. Before any selection the list holds all registrations.
EE_API CommandBase* (*DllRegistryGetNextCommand(unsigned int index))();
/// Selects the commands and tests of the shared object with that file name, given with or without directories. Returns
/// 0, or the errno of a registration that could not find out its file; that is reported once.
EE_API int DllRegistrySelectDll(const char* path);
/// The same for the tests alone, by the bare file name.
EE_API void DllRegistrySelectDllForTests(const std::string& fileName);
/// The selected test at `index`; false, and `entry` as it was, when there is none.
EE_API bool DllRegistryTryGetNextAutomaticTest(int index, AutomaticTestEntry& entry);

/// Registers a command; made as a static object.
class EE_API AddToCommandVector
{
public:
    explicit AddToCommandVector(CommandBase* (*factory)());
};

/// Registers an automatic test; made as a static object.
class EE_API AddToAutomaticTestVector
{
public:
    AddToAutomaticTestVector(const wchar_t* name, const wchar_t* title, unsigned int kind, void (*run)(TestCommand&));
};

/// The file name of the loaded object that holds the address. Empty, with errno kept for DllRegistrySelectDll, when
/// there is none.
EE_API std::string GetDllName(void* address);
/// The part behind the last "/".
EE_API std::string GetDllFileName(const char* path);
