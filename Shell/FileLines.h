#pragma once

#include "LineSource.h"
#include "Services/FileDescriptor.h"

#include <cstddef>
#include <vector>

/// The lines of a file, or of whatever the descriptor reads from, in bounded memory. Line ends are LF or CR LF; a byte
/// order mark at the start is left out.
class FileLines : public LineSource
{
public:
    /// Opens the file. Throws HostException(FileError).
    explicit FileLines(const std::string& name);
    /// Takes over an open descriptor; `name` is for messages.
    FileLines(int descriptor, const std::string& name);

    bool TryReadLine(std::string& line) override;

private:
    std::string name;
    FileDescriptor file;
    bool isAtStart = true;
    std::vector<char> block;
    std::size_t position = 0;

    bool TryFillBlock();
    bool TryTakeToLineEnd(std::string& line);
    [[noreturn]] void Fail() const;
};
