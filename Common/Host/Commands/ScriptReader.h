#pragma once

#include "Commands/LineSource.h"
#include "HostApi.h"

#include <cstddef>
#include <string>
#include <vector>

/// The commands of a script: one a line, a final backslash continuing it; a line that begins with "#" is a comment.
class HOST_API ScriptReader
{
public:
    explicit ScriptReader(LineSource& source) : source(source) {}

    /// The next command, its lines joined; false behind the last one. One longer than CommandRunner::maxLineLength
    /// bytes comes cut behind the first byte too many. Throws what the source throws.
    bool TryRead(std::string& command);

    /// Where the command begins, from 1.
    unsigned int GetLine() const noexcept { return commandLine; }
    /// How many bytes of the command each of its lines gave.
    const std::vector<std::size_t>& GetLineSizes() const noexcept { return lineSizes; }
    /// The last line, of this command or the one before it, in which a blank behind a final backslash keeps the line
    /// from being continued; 0 when there is none.
    unsigned int GetSpoiltLine() const noexcept { return spoiltLine != 0 ? spoiltLine : formerSpoiltLine; }
    /// The line in front of the command: a comment, a blank line, or empty.
    const std::string& GetLineBefore() const noexcept { return lineBefore; }

    static bool IsBlankOrComment(const std::string& line);

private:
    LineSource& source;
    unsigned int linesRead = 0;
    unsigned int commandLine = 0;
    std::vector<std::size_t> lineSizes;
    unsigned int spoiltLine = 0;
    unsigned int formerSpoiltLine = 0;
    std::string lineBefore;

    bool TryReadLine(std::string& line);
};
