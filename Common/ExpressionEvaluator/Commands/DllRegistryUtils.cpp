#include "DllRegistryUtils.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <utility>
#include <vector>

using Factory = CommandBase* (*)();

struct tagCmdRecord
{
    std::string fileName;
    Factory factory;
};

struct tagTestRecord
{
    std::string fileName;
    AutomaticTestEntry entry;
};

// Registrations come from static initialisers of other files, possibly before those of this one: so all of these are
// constant-initialised, and the lists are made on first use. They live as long as the process.
constinit std::vector<Factory>* pCommandVector_gb = nullptr;
constinit std::vector<tagCmdRecord>* pCommandRecords_gb = nullptr;
constinit std::vector<AutomaticTestEntry>* pAutomaticTestVector_gb = nullptr;
constinit std::vector<tagTestRecord>* pTestRecords_gb = nullptr;
static constinit int pendingRegistryErrno_lc = 0;

template <typename T>
static std::vector<T>& MadeOnFirstUse(std::vector<T>*& list)
{
    if (!list)
        list = new std::vector<T>;
    return *list;
}

template <typename T>
static void Renew(std::vector<T>*& list)
{
    delete std::exchange(list, new std::vector<T>);
}

AddToCommandVector::AddToCommandVector(Factory factory)
{
    MadeOnFirstUse(pCommandVector_gb).push_back(factory);
    MadeOnFirstUse(pCommandRecords_gb).push_back({GetDllName(reinterpret_cast<void*>(factory)), factory});
}

AddToAutomaticTestVector::AddToAutomaticTestVector(
    const wchar_t* name, const wchar_t* title, unsigned int kind, void (*run)(TestCommand&))
{
    const AutomaticTestEntry entry(name, title, kind, run);
    MadeOnFirstUse(pAutomaticTestVector_gb).push_back(entry);
    MadeOnFirstUse(pTestRecords_gb).push_back({GetDllName(reinterpret_cast<void*>(run)), entry});
}

std::string GetDllName(void* address)
{
    Dl_info info;
    if (dladdr(address, &info) == 0) {
        pendingRegistryErrno_lc = errno;
        return std::string();
    }
    return GetDllFileName(info.dli_fname);
}

std::string GetDllFileName(const char* path)
{
    const char* slash = std::strrchr(path, '/');
    return slash ? slash + 1 : path;
}

CommandBase* (*DllRegistryGetNextCommand(unsigned int index))()
{
    if (!pCommandVector_gb || index >= pCommandVector_gb->size())
        return nullptr;
    return (*pCommandVector_gb)[index];
}

int DllRegistrySelectDll(const char* path)
{
    const std::string fileName = GetDllFileName(path);
    Renew(pCommandVector_gb);
    for (const tagCmdRecord& record : MadeOnFirstUse(pCommandRecords_gb)) {
        if (record.fileName == fileName)
            pCommandVector_gb->push_back(record.factory);
    }
    DllRegistrySelectDllForTests(fileName);
    return std::exchange(pendingRegistryErrno_lc, 0);
}

void DllRegistrySelectDllForTests(const std::string& fileName)
{
    if (!pTestRecords_gb)
        return;
    Renew(pAutomaticTestVector_gb);
    for (const tagTestRecord& record : *pTestRecords_gb) {
        if (record.fileName == fileName)
            pAutomaticTestVector_gb->push_back(record.entry);
    }
}

bool DllRegistryTryGetNextAutomaticTest(int index, AutomaticTestEntry& entry)
{
    if (!pAutomaticTestVector_gb || index < 0 || static_cast<std::size_t>(index) >= pAutomaticTestVector_gb->size())
        return false;
    entry = (*pAutomaticTestVector_gb)[static_cast<std::size_t>(index)];
    return true;
}
