#pragma once

#include "HostApi.h"
#include "Text/WString.h"

#include <string>

/// Reads a named text out of the file of a plug-in (its ELF section ".ov.<resource name>", which is not loaded into
/// memory), line by line, without line ends.
class HOST_API EmbeddedResource
{
public:
    /// A text of the plug-in that provides the command. Throws HostException(FileError) when the command, its file or
    /// the section cannot be found or read.
    EmbeddedResource(const wchar_t* commandName, const wchar_t* resourceName);
    /// A text of a file; an empty one when that is no ELF file or has no such section.
    EmbeddedResource(const std::string& file, const wchar_t* resourceName);

    bool EndOfFile() const noexcept { return position >= text.size(); }
    WString ReadLine();

private:
    std::string text;
    std::size_t position = 0;
};
