#include "Commands/PluginLoader.h"

#include "Commands/CommandRegistry.h"
#include "Text/HostError.h"

#include <dlfcn.h>
#include <filesystem>
#include <system_error>

// The registry that every plug-in exports; the names carry the types of the arguments.
using GetNextCommand = CommandFactory(unsigned int index);
using SelectDll = int(const char* path);
using TryGetNextAutomaticTest = bool(int index, AutomaticTestEntry& entry);

namespace {
[[noreturn]] void Fail(const std::string& path, const std::string& reason)
{
    throw HostException(HostError::FileError, WString::FromUtf8(path + ": " + reason));
}

template <typename Function>
Function* Find(void* library, const std::string& path, const char* symbol)
{
    void* const address = dlsym(library, symbol);
    if (!address)
        Fail(path, std::string("not a plug-in, it lacks ") + symbol);
    return reinterpret_cast<Function*>(address);
}
} // namespace

void PluginLoader::Load(const std::string& path)
{
    // A name without a slash would be searched for in the system's folders.
    const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
    if (std::error_code error; std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
        Fail(file, "not a file"); // the loader would wait for a pipe's writer
    // A library that turns out to be no plug-in stays loaded: the host may already hold pointers that its initialisers
    // registered.
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw HostException(HostError::FileError, WString::FromUtf8(dlerror()));
    const auto getNextCommand = Find<GetNextCommand>(library, file, "_Z25DllRegistryGetNextCommandj");
    const auto selectDll = Find<SelectDll>(library, file, "_Z20DllRegistrySelectDllPKc");
    const auto tryGetNextTest =
        Find<TryGetNextAutomaticTest>(library, file, "_Z34DllRegistryTryGetNextAutomaticTestiR18AutomaticTestEntry");

    if (const int error = selectDll(file.c_str()))
        Fail(file, "its registry cannot name its file: " + std::generic_category().message(error));
    unsigned int commands = 0;
    for (; const CommandFactory factory = getNextCommand(commands); ++commands) {
        if (!CommandRegistry::Add(factory, file))
            Fail(file, "it offers a command that is already there");
    }
    int tests = 0;
    for (AutomaticTestEntry entry; tryGetNextTest(tests, entry); ++tests)
        CommandRegistry::AddTest(entry);
    if (commands == 0 && tests == 0)
        Fail(file, "it offers nothing under this file name");
}
