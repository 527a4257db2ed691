#include "Services/System.h"
#include "Services/WholeFile.h"

#include <algorithm>
#include <charconv>
#include <filesystem>

namespace {

struct Process
{
    WString name;
    WString commandLine; // arguments joined by blanks
};

/// The kernel cuts names at 15 characters; the rest stands in the first argument, for those who left that as it was.
std::string Complete(const std::string& name, const std::string& arguments)
{
    const std::string path = arguments.substr(0, arguments.find('\0'));
    const std::string file = path.substr(path.rfind('/') + 1);
    return name.size() == 15 && file.starts_with(name) ? file : name;
}

/// False for a process that has ended meanwhile.
bool TryRead(const std::filesystem::path& folder, Process& process)
{
    std::string name;
    std::string arguments;
    if (WholeFile::Read(folder / "comm", name) != 0 || WholeFile::Read(folder / "cmdline", arguments) != 0)
        return false;
    name.erase(name.find_last_not_of('\n') + 1);
    process.name = WString::FromUtf8(Complete(name, arguments));
    arguments.erase(arguments.find_last_not_of('\0') + 1);
    std::ranges::replace(arguments, '\0', ' ');
    process.commandLine = WString::FromUtf8(arguments);
    return true;
}

/// The process id that a folder of the process table is named by, or -1 for its other folders.
int GetId(const std::filesystem::path& folder)
{
    const std::string name = folder.filename();
    int id = -1;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
    return error == std::errc() && end == name.data() + name.size() ? id : -1;
}

} // namespace

int System::GetMatchingProcess(const wchar_t* command, const wchar_t* commandLine)
{
    int lowest = -1;
    std::error_code error;
    for (std::filesystem::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        const int id = GetId(entry->path());
        Process process;
        if (id < 0 || (lowest >= 0 && id > lowest) || !TryRead(entry->path(), process))
            continue;
        if (process.name.IsWildcardMatch(command, true) &&
            (!commandLine || process.commandLine.IsWildcardMatch(commandLine, true)))
            lowest = id;
    }
    return lowest;
}
