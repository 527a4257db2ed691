#pragma once

#include "HostApi.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <cstdio>

/// The line-oriented output of a command.
class HOST_API Pipe
{
public:
    virtual ~Pipe() = default;
    /// Writes one line as it stands.
    virtual void DoWriteLine(const WString& line) = 0;
    /// Writes one line made by WString::Format. Text from users goes into the arguments, never into the format.
    template <typename... Arguments>
    void WriteLine(const wchar_t* format, const Arguments&... arguments)
    {
        DoWriteLine(WString::Format(format, arguments...));
    }
};

/// Lines to a stream of the C library as UTF-8; not owned.
class HOST_API StreamPipe : public Pipe
{
public:
    explicit StreamPipe(std::FILE* stream) : stream(stream) {}
    void DoWriteLine(const WString& line) override;

private:
    std::FILE* stream;
};

/// Lines kept in an array.
class HOST_API ArrayPipe : public Pipe
{
public:
    void DoWriteLine(const WString& line) override { lines.Add(line); }
    WStringArray lines;
};
