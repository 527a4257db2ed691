#pragma once

#include <cstdint>
#include <gelf.h>
#include <string>
#include <string_view>
#include <vector>

/// Thrown by what checks a plug-in's file: what is wrong, and where.
struct PluginFault
{
    std::string text;
};

/// The bytes of a file, which is open, or of its image in memory.
class PluginBytes
{
public:
    PluginBytes(int descriptor, std::string_view image);

    std::uint64_t GetSize() const noexcept { return size; }
    /// Throws PluginFault when they are not there.
    void Read(std::uint64_t offset, void* buffer, std::size_t count) const;
    /// Whether the text, of one block at most, stands anywhere in them. Throws PluginFault when they are not there.
    bool Contain(std::string_view text) const;

private:
    int descriptor;
    std::string_view image;
    std::uint64_t size;
};

/// What a plug-in has in memory once it is loaded. The constructor checks the headers and the segments, and throws
/// PluginFault.
class PluginSegments
{
public:
    PluginSegments(Elf* elf, const PluginBytes& bytes);

    /// The CRC-32 of the ELF header, but where the sections stand is no matter, and of all that is loaded behind it.
    std::uint32_t CalculateCrc() const;

private:
    const PluginBytes& bytes;
    std::vector<GElf_Phdr> loaded;

    GElf_Ehdr CheckHeader(Elf* elf) const;
    void AddLoaded(const GElf_Phdr& segment, const std::string& name);
    bool Holds(const GElf_Phdr& segment) const;
};
