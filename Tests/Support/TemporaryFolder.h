#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

/// A new folder that goes away, with all in it, at the end of the scope.
class TemporaryFolder
{
public:
    TemporaryFolder() : path((std::filesystem::temp_directory_path() / "labsh-test-XXXXXX").string())
    {
        if (!mkdtemp(path.data()))
            throw std::runtime_error("no temporary folder");
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& GetPath() const { return path; }
    std::string Path(const std::string& name) const { return path + "/" + name; }

    /// Writes the file of that name in the folder and returns its path.
    std::string Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(Path(name), std::ios::binary) << bytes;
        return Path(name);
    }
    std::string Read(const std::string& name) const { return ReadFile(Path(name)); }
    static std::string ReadFile(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }

private:
    std::string path;
};
