#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

/// The line-oriented output of a command.
class HOST_API Pipe
{
public:
    virtual ~Pipe() = default;
    /// Writes one line as it stands.
    virtual void DoWriteLine(const WString& line) = 0;
    /// Hands on what was written, where it is gathered first. Called when a command line has ended, and before a wait.
    virtual void Flush() noexcept {}
    /// Writes one line made by WString::Format. Text from users goes into the arguments, never into the format.
    template <typename... Arguments>
    void WriteLine(const wchar_t* format, const Arguments&... arguments)
    {
        DoWriteLine(WString::Format(format, arguments...));
    }
};

/// Lines kept in an array.
class HOST_API ArrayPipe : public Pipe
{
public:
    void DoWriteLine(const WString& line) override { lines.Add(line); }
    WStringArray lines;
};
