#include "Services/ProcessTable.h"

#include "Services/WholeFile.h"
#include "Text/Abort.h"
#include "Text/WString.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <string>

#include <dirent.h>

namespace {

struct FolderCloser
{
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

/// A file of a process's folder; empty when the process has ended meanwhile.
std::string Read(const std::string& file)
{
    std::string text;
    return WholeFile::Read(file, text) == 0 ? text : std::string();
}

/// The command name. The kernel cuts it at 15 characters; the rest stands in the first argument, for those who left
/// that as it was.
WString GetName(const std::string& folder)
{
    std::string name = Read(folder + "/comm");
    name.erase(name.find_last_not_of('\n') + 1);
    if (name.size() == 15) {
        const std::string arguments = Read(folder + "/cmdline");
        const std::string path = arguments.substr(0, arguments.find('\0'));
        const std::string file = path.substr(path.rfind('/') + 1);
        if (file.starts_with(name))
            name = file;
    }
    return WString::FromUtf8(name);
}

/// The arguments joined by blanks.
WString GetCommandLine(const std::string& folder)
{
    std::string arguments = Read(folder + "/cmdline");
    arguments.erase(arguments.find_last_not_of('\0') + 1);
    std::ranges::replace(arguments, '\0', ' ');
    return WString::FromUtf8(arguments);
}

/// False for a process that has ended, also while its parent has not yet taken note.
bool IsRunning(const std::string& folder)
{
    const std::string text = Read(folder + "/stat"); // "id (name) state ...", and the name may hold anything
    const std::size_t end = text.rfind(") ");
    return end != text.npos && text[end + 2] != 'Z' && text[end + 2] != 'X';
}

/// Reads the command line only when it matters: that waits for a process that is stuck in the kernel.
bool IsMatch(const std::string& folder, const wchar_t* command, const wchar_t* commandLine)
{
    return GetName(folder).IsWildcardMatch(command, true) &&
        (!commandLine || GetCommandLine(folder).IsWildcardMatch(commandLine, true)) && IsRunning(folder);
}

/// The process id that a folder of the process table is named by, or -1 for its other folders.
int GetId(std::string_view name)
{
    int id = -1;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
    return error == std::errc() && end == name.data() + name.size() ? id : -1;
}

} // namespace

int ProcessTable::FindMatching(const wchar_t* command, const wchar_t* commandLine)
{
    // The library's own iterator ends the process where memory runs out.
    const std::string table = "/proc";
    const std::unique_ptr<DIR, FolderCloser> processes(opendir(table.c_str()));
    int lowest = -1;
    while (const dirent* entry = processes ? readdir(processes.get()) : nullptr) {
        Abort::ThrowIfRequested();
        const int id = GetId(entry->d_name);
        if (id >= 0 && (lowest < 0 || id < lowest) && IsMatch(table + "/" + entry->d_name, command, commandLine))
            lowest = id;
    }
    return lowest;
}
