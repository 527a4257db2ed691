#pragma once

#include "HostApi.h"
#include "Services/FileDescriptor.h"

#include <memory>
#include <string>
#include <string_view>

struct Elf;

/// The file of a plug-in as it stands on disk, read without loading it. Whatever the file holds, or becomes meanwhile,
/// reading it cannot harm the process. For one thread at a time.
class HOST_API PluginFile
{
public:
    /// A file that cannot be opened or is no ELF file has no sections.
    explicit PluginFile(const std::string& path);
    /// A file in memory, which is read as long as the object lives.
    explicit PluginFile(std::string_view image);
    ~PluginFile();
    PluginFile(const PluginFile&) = delete;
    PluginFile& operator=(const PluginFile&) = delete;

    /// False when there is no such section, or it cannot be read.
    bool TryReadSection(const std::string& name, std::string& contents) const;

    /// What is wrong with the file, and where, if loading it could end the process; else an empty text, also for a file
    /// that cannot be opened. Looks at the headers and whether the file has all that is to be loaded, and compares that
    /// with the checksum in the section ".ov.checksum". A plug-in without one may be damaged where nobody sees it.
    std::string FindFault() const;

    /// What that section holds: its name, a blank, and the checksum of all that is loaded, 8 hexadecimal digits; it
    /// stays when debug information is taken out of the file. Empty for a file with a fault.
    std::string CalculateChecksum() const;

private:
    FileDescriptor descriptor;
    std::string_view image;
    std::unique_ptr<Elf, int (*)(Elf*)> elf; // null if it is none
};
