#pragma once

#include "Support/TemporaryFolder.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

/// The files in a folder of Tests, sorted.
inline std::vector<std::filesystem::path> ListTestFiles(const std::string& folder)
{
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(SOURCE_DIR "/Tests/" + folder))
        files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

/// The lines of a file; a relative path begins in Tests.
inline std::vector<std::string> ReadTestLines(const std::filesystem::path& file)
{
    std::vector<std::string> lines;
    std::istringstream stream(TemporaryFolder::ReadFile(std::filesystem::path(SOURCE_DIR "/Tests") / file));
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}
