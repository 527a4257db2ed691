#pragma once

#include <string>
#include <utility>

/// Where the shell's lines come from: a file, the terminal, or the command line.
class LineSource
{
public:
    virtual ~LineSource() = default;
    /// The next line as UTF-8 without its end; false behind the last one. A line longer than
    /// CommandRunner::maxLineLength bytes comes cut behind the first byte too many. Throws HostException when the
    /// source cannot be read or the wait for input is aborted.
    virtual bool TryReadLine(std::string& line) = 0;
};

/// A single line.
class OneLine : public LineSource
{
public:
    explicit OneLine(std::string text) : text(std::move(text)) {}
    bool TryReadLine(std::string& line) override
    {
        line = std::move(text);
        return !std::exchange(isRead, true);
    }

private:
    std::string text;
    bool isRead = false;
};
