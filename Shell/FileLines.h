#pragma once

#include "Commands/LineSource.h"
#include "Services/FileDescriptor.h"
#include "Text/Utf16.h"

#include <cstddef>
#include <optional>
#include <string>

/// The lines of a file, or of whatever the descriptor reads from, in bounded memory. Line ends are LF or CR LF; a byte
/// order mark at the start is left out, and tells UTF-16 from UTF-8.
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
    bool isBegun = false;
    bool isAtStart = true;
    std::optional<Utf16Decoder> decoder;
    std::string block; // in UTF-8
    std::size_t position = 0;

    bool TryFillBlock();
    bool TryReadBlock();
    void RecogniseEncoding();
    std::size_t Read(char* bytes, std::size_t size);
    bool TryTakeToLineEnd(std::string& line);
    [[noreturn]] void Fail() const;
};
