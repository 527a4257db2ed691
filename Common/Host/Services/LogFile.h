#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <atomic>
#include <string>

/// A text log in the data folder, "<name>.txt" in UTF-8, with one older generation, "<name>.old.txt", once it has
/// reached its size limit. Safe under threads and between processes: lines are never mixed or cut, and the limit is
/// kept by all of them together. A log that cannot be written, or that another process keeps locked for 100 ms, loses
/// the line in silence: logging neither fails a command nor holds it up.
class HOST_API LogFile
{
public:
    /// `firstText` begins each new file when it is not empty; `sizeLimit` is in bytes. A log starts out disabled,
    /// unless the logs have been attached and their switch says otherwise.
    LogFile(const wchar_t* firstText, const wchar_t* name, unsigned int sizeLimit);
    ~LogFile();
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    bool IsEnabled() const noexcept { return enabled.load(std::memory_order_relaxed); }
    void SetEnabled(bool value) noexcept { enabled.store(value, std::memory_order_relaxed); }

    /// Appends one line, as it stands behind the log's prefix; nothing when the log is disabled.
    void DoWriteLine(const WString& line);
    /// Appends one line made by WString::Format. Text from users goes into the arguments, never into the format.
    template <typename... Arguments>
    void WriteLine(const wchar_t* format, const Arguments&... arguments)
    {
        if (IsEnabled())
            DoWriteLine(WString::Format(format, arguments...));
    }

    /// Makes what stands before each line from now on. Called before other threads write to the log.
    void SetPrefix(WString (*makePrefix)()) noexcept { prefix = makePrefix; }

    /// The logs of the process, in no order.
    static void GetNames(WStringArray& names);

    /// The file's path; empty while the logs have no folder.
    std::string GetPath() const;

    /// Says whether the log of that name is to be enabled, which now is `enabled`.
    using Switch = bool (*)(const WString& name, bool enabled);
    /// Gives every log of the process, those made later too, its folder and its switch, and asks that of each. Called
    /// once, before other threads write to any log.
    static void Attach(const std::string& folder, Switch isToBeEnabled);
    /// Asks the switch again for every log; nothing before the logs are attached.
    static void ConfigureAll();

private:
    const WString firstText;
    const WString name;
    const unsigned int sizeLimit;
    WString (*prefix)() = nullptr;
    std::atomic<bool> enabled{false};
};
