#include "Commands/ScriptReader.h"

#include "Commands/CommandRunner.h"

#include <algorithm>
#include <utility>

static bool IsSpoilt(const std::string& line)
{
    const auto last = line.find_last_not_of(" \t");
    return last < line.size() - 1 && line[last] == '\\';
}

bool ScriptReader::IsBlankOrComment(const std::string& line)
{
    const auto first = line.find_first_not_of(" \t");
    return first == std::string::npos || line[first] == '#';
}

bool ScriptReader::TryReadLine(std::string& line)
{
    const bool isRead = source.TryReadLine(line);
    linesRead += isRead;
    return isRead;
}

bool ScriptReader::TryRead(std::string& command)
{
    constexpr std::size_t limit = CommandRunner::maxLineLength;
    std::string line;
    lineBefore.clear();
    for (;; lineBefore = std::move(line)) {
        if (!TryReadLine(line))
            return false;
        if (!IsBlankOrComment(line))
            break;
    }
    commandLine = linesRead;
    formerSpoiltLine = std::exchange(spoiltLine, 0);
    command.clear();
    lineSizes.clear();
    bool isContinued = false;
    do {
        const std::size_t start = command.size();
        command += line;
        isContinued = line.ends_with('\\') && line.size() <= limit && TryReadLine(line); // a longer line comes cut
        if (isContinued)
            command.pop_back();
        command.resize(std::min(command.size(), limit + 1)); // one too many is enough to be refused
        lineSizes.push_back(command.size() - start);
    } while (isContinued);
    if (IsSpoilt(line))
        spoiltLine = linesRead;
    return true;
}
