#include "Services/LogFile.h"

#include "Services/FileDescriptor.h"

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

constexpr int longestLineWait = 100; // ms; a line is not worth more

/// The logs of the process. Logs are static objects of libHost and of plug-ins, made in an order that nobody controls.
struct Registry
{
    std::mutex lock;
    std::mutex writing; // threads wait for each other as long as it takes, but for other processes only a while
    std::vector<LogFile*> logs;
    std::string folder; // empty before the logs are attached
    LogFile::Switch isToBeEnabled = nullptr;

    static Registry& Get()
    {
        static Registry registry;
        return registry;
    }
};

std::string GetFile(const std::string& folder, const WString& name, const char* ending)
{
    return folder + "/" + name.ToUtf8() + ending;
}

/// True when the open file is still the one of that path; another process may have made it the older generation.
bool IsCurrent(const struct stat& opened, const std::string& path)
{
    struct stat named = {};
    return stat(path.c_str(), &named) == 0 && named.st_ino == opened.st_ino && named.st_dev == opened.st_dev;
}

} // namespace

LogFile::LogFile(const wchar_t* firstText, const wchar_t* name, unsigned int sizeLimit)
    : firstText(firstText), name(name), sizeLimit(sizeLimit)
{
    Registry& registry = Registry::Get();
    const std::lock_guard guard(registry.lock);
    registry.logs.push_back(this);
    if (registry.isToBeEnabled)
        SetEnabled(registry.isToBeEnabled(name, IsEnabled()));
}

LogFile::~LogFile()
{
    Registry& registry = Registry::Get();
    const std::lock_guard guard(registry.lock);
    std::erase(registry.logs, this);
}

void LogFile::Attach(const std::string& folder, Switch isToBeEnabled)
{
    Registry& registry = Registry::Get();
    {
        const std::lock_guard guard(registry.lock);
        registry.folder = folder;
        registry.isToBeEnabled = isToBeEnabled;
    }
    ConfigureAll();
}

void LogFile::ConfigureAll()
{
    Registry& registry = Registry::Get();
    const std::lock_guard guard(registry.lock);
    if (!registry.isToBeEnabled)
        return;
    for (LogFile* log : registry.logs)
        log->SetEnabled(registry.isToBeEnabled(log->name, log->IsEnabled()));
}

void LogFile::GetNames(WStringArray& names)
{
    Registry& registry = Registry::Get();
    const std::lock_guard guard(registry.lock);
    names.Clear();
    for (const LogFile* log : registry.logs)
        names.Add(log->name);
}

std::string LogFile::GetPath() const
{
    const std::string& folder = Registry::Get().folder;
    return folder.empty() ? folder : GetFile(folder, name, ".txt");
}

void LogFile::DoWriteLine(const WString& line)
{
    if (!IsEnabled())
        return;
    const std::string path = GetPath();
    if (path.empty())
        return;
    std::string text = (prefix ? prefix() + line : line).ToUtf8() + "\n";
    constexpr int flags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    const std::lock_guard guard(Registry::Get().writing);
    for (;;) {
        // The file lock, which keeps other processes away, ends with the descriptor.
        const FileDescriptor file(open(path.c_str(), flags, 0666));
        struct stat opened = {};
        if (!file.IsOpen() || !file.TryLock(longestLineWait) || fstat(file.Get(), &opened) != 0 ||
            !S_ISREG(opened.st_mode))
            return;
        if (!IsCurrent(opened, path))
            continue;
        const auto size = static_cast<std::uintmax_t>(opened.st_size);
        if (size != 0 && size + text.size() > sizeLimit) {
            if (std::rename(path.c_str(), GetFile(Registry::Get().folder, name, ".old.txt").c_str()) != 0)
                return;
            continue;
        }
        if (size == 0 && !firstText.IsEmpty())
            text.insert(0, firstText.ToUtf8() + "\n");
        // What the disk took of a line for which it has no room is taken back.
        [[maybe_unused]] const bool isWhole = write(file.Get(), text.data(), text.size()) == std::ssize(text) ||
            ftruncate(file.Get(), opened.st_size) == 0;
        return;
    }
}
