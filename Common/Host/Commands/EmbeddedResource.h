#pragma once

#include "HostApi.h"
#include "Text/WString.h"

#include <string>

/// Reads a named text out of the file of the plug-in that provides a command (its ELF section ".ov.<resource name>",
/// which is not loaded into memory), line by line, without line ends.
class HOST_API EmbeddedResource
{
public:
    /// Throws HostException(FileError) when the command, its file or the section cannot be found or read.
    EmbeddedResource(const wchar_t* commandName, const wchar_t* resourceName);

    bool EndOfFile() const noexcept { return position >= text.size(); }
    WString ReadLine();

    /// The bytes of a section of an ELF file; false when the file is no ELF file or has no such section.
    static bool TryReadSection(const std::string& file, const std::string& section, std::string& contents);

private:
    std::string text;
    std::size_t position = 0;
};
