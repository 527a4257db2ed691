#pragma once

#include "Commands/LineSource.h"
#include "Commands/Pipe.h"
#include "Services/FileDescriptor.h"

#include <string>

/// The record of a session, in a file that earlier sessions may have begun: each line that is typed or read from the
/// script (marked ">"), printed, or written on standard error (marked "!"), behind the date and the time. A line is in
/// the file as soon as it is written. For one thread.
class SessionLog
{
public:
    /// Opens the file to write behind what it holds. Throws HostException(FileError).
    explicit SessionLog(const std::string& file);
    ~SessionLog() { current = nullptr; }
    SessionLog(const SessionLog&) = delete;
    SessionLog& operator=(const SessionLog&) = delete;

    /// The log of the session that is recorded; null when none is.
    static SessionLog* GetOrNull() noexcept { return current; }
    void Record(wchar_t mark, const WString& line);
    /// Throws HostException(FileError) when a line could not be recorded; the lines behind it were dropped.
    void Check() const;

private:
    static inline SessionLog* current = nullptr;
    const std::string name;
    FileDescriptor file;
    int fault = 0;

    void Write(const std::string& text);
};

/// Lines that are recorded as they are read.
class RecordedLines : public LineSource
{
public:
    explicit RecordedLines(LineSource& source) : source(source) {}
    bool TryReadLine(std::string& line) override;

private:
    LineSource& source;
};

/// Output that is recorded as it is written.
class RecordedOutput : public Pipe
{
public:
    explicit RecordedOutput(Pipe& output) : output(output) {}
    void DoWriteLine(const WString& line) override;
    void Flush() noexcept override { output.Flush(); }

private:
    Pipe& output;
};
