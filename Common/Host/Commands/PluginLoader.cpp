#include "Commands/PluginLoader.h"

#include "Commands/CommandRegistry.h"
#include "Commands/PluginFile.h"
#include "Commands/ScriptAssistant.h"
#include "Text/HostError.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <system_error>

// The registry that every plug-in exports; the names carry the types of the arguments.
using GetNextCommand = CommandFactory(unsigned int index);
using SelectDll = int(const char* path);
using TryGetNextAutomaticTest = bool(int index, AutomaticTestEntry& entry);

namespace {
/// What the initialisers of a library tell about its functions.
struct Functions
{
    unsigned int added = 0;
    WString refused; // names
};

constinit Functions* listener_lc = nullptr; // while a library is being loaded

/// Listens for the life of the object.
struct Listening
{
    explicit Listening(Functions& functions) { listener_lc = &functions; }
    ~Listening() { listener_lc = nullptr; }
    Listening(const Listening&) = delete;
    Listening& operator=(const Listening&) = delete;
};

struct Loaded
{
    std::vector<std::string> files;
    std::vector<void*> libraries;
};

Loaded& GetLoaded()
{
    static Loaded loaded;
    return loaded;
}

[[noreturn]] void Fail(const std::string& path, const std::string& reason)
{
    throw HostException(HostError::FileError, WString::FromUtf8(path + ": " + reason));
}

/// A library that turns out to be no plug-in stays loaded: the host may already hold pointers that its initialisers
/// registered.
void* Open(const std::string& file, Functions& functions)
{
    const Listening listening(functions);
    void* const library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library)
        throw HostException(HostError::FileError, WString::FromUtf8(dlerror()));
    return library;
}

template <typename Function>
Function* Find(void* library, const std::string& path, const char* symbol)
{
    void* const address = dlsym(library, symbol);
    if (!address)
        Fail(path, std::string("not a plug-in, it lacks ") + symbol);
    return reinterpret_cast<Function*>(address);
}

/// Adds the commands and tests that the library's registry has under this file name, and returns their number.
unsigned int AddEntries(void* library, const std::string& file)
{
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
    return commands + static_cast<unsigned int>(tests);
}
} // namespace

void PluginLoader::Load(const std::string& path)
{
    // A name without a slash would be searched for in the system's folders.
    const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
    if (std::error_code error; std::filesystem::exists(file, error) && !std::filesystem::is_regular_file(file, error))
        Fail(file, "not a file"); // the loader would wait for a pipe's writer
    if (const std::string fault = PluginFile(file).FindFault(); !fault.empty())
        Fail(file, fault);
    // The functions of a library that another plug-in has brought along were added then.
    const bool isNew = !dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    const ScriptAssistant* const assistant = ScriptAssistant::GetOrNull();
    Functions functions;
    void* const library = Open(file, functions);
    Loaded& loaded = GetLoaded();
    if (std::ranges::find(loaded.libraries, library) != loaded.libraries.end())
        Fail(file, "it is already loaded");
    if (!functions.refused.IsEmpty())
        Fail(file, "it brings a function that is already there: " + functions.refused.ToUtf8());
    const bool hasAssistant = ScriptAssistant::GetOrNull() != assistant;
    if (AddEntries(library, file) == 0 && functions.added == 0 && !hasAssistant && isNew)
        Fail(file, "it offers nothing under this file name");
    loaded.files.push_back(file);
    loaded.libraries.push_back(library);
}

std::string PluginLoader::GetFolder()
{
    Dl_info info;
    std::error_code error;
    std::filesystem::path folder;
    if (dladdr(&listener_lc, &info) != 0)
        folder = std::filesystem::canonical(std::filesystem::path(info.dli_fname).parent_path(), error);
    if (folder.empty())
        Fail("libHost.so", "its folder cannot be found: " + error.message());
    return folder;
}

const std::vector<std::string>& PluginLoader::GetFiles()
{
    return GetLoaded().files;
}

void PluginLoader::TellFunction(const WString& name, bool isAdded)
{
    if (!listener_lc)
        return;
    if (isAdded)
        ++listener_lc->added;
    else
        listener_lc->refused.AppendWithSeparator(name, L", ");
}
