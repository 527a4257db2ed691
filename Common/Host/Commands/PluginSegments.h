#pragma once

#include <cstdint>
#include <gelf.h>
#include <link.h>
#include <string>
#include <string_view>
#include <vector>

/// Thrown by what checks a plug-in's file: what is wrong, and where.
struct PluginFault
{
    std::string text;
};

[[noreturn]] void FailPlugin(const std::string& text);

/// A number as addresses are written.
std::string Hexadecimal(std::uint64_t number);

/// The bytes of a file, which is open, or of its image in memory.
class PluginBytes
{
public:
    PluginBytes(int descriptor, std::string_view image);

    std::uint64_t GetSize() const noexcept { return size; }
    /// Throws PluginFault when they are not there.
    void Read(std::uint64_t offset, void* buffer, std::size_t count) const;

private:
    int descriptor;
    std::string_view image;
    std::uint64_t size;
};

/// What a plug-in has in memory once it is loaded, by the addresses that its file gives. The constructor checks the
/// headers and the segments, and throws PluginFault.
class PluginSegments
{
public:
    PluginSegments(Elf* elf, const PluginBytes& bytes);

    /// Whether a loaded segment holds these addresses, and allows what the flags PF_R, PF_W and PF_X say.
    bool Holds(std::uint64_t address, std::uint64_t size, unsigned int flags) const;

    /// The entries of a table in the file; `what` names it in the fault that is thrown if they are in no segment.
    template <typename Entry>
    std::vector<Entry> Read(const char* what, std::uint64_t address, std::uint64_t count) const
    {
        if (count > bytes.GetSize() / sizeof(Entry) || address % alignof(Entry) != 0)
            FailAt(what, address);
        std::vector<Entry> entries(static_cast<std::size_t>(count));
        bytes.Read(Locate(what, address, count * sizeof(Entry)), entries.data(), entries.size() * sizeof(Entry));
        return entries;
    }

    /// How many bytes the file has from this address to the end of the segment; 0 for an address in none.
    std::uint64_t CountBytesFrom(std::uint64_t address) const;

    /// The CRC-32 of all that is loaded, but the ELF header: where the sections stand is no matter.
    std::uint32_t CalculateCrc() const;

    const GElf_Phdr& GetDynamic() const noexcept { return dynamic; }
    /// How much memory each thread has of its own; 0 for none.
    std::uint64_t GetThreadSize() const noexcept { return threadSize; }

    [[noreturn]] static void FailAt(const char* what, std::uint64_t address);

private:
    const PluginBytes& bytes;
    std::vector<GElf_Phdr> loaded;
    std::uint64_t tableOffset = 0; // of the program header
    GElf_Phdr dynamic{};
    std::uint64_t threadSize = 0;

    GElf_Ehdr CheckHeader(Elf* elf) const;
    void AddLoaded(const GElf_Phdr& segment, const std::string& name);
    void CheckNotes(const GElf_Phdr& segment, const std::string& name) const;
    void CheckWithin(const GElf_Phdr& segment, const std::string& name);
    const GElf_Phdr* FindInFileOrNull(std::uint64_t address) const;
    std::uint64_t Locate(const char* what, std::uint64_t address, std::uint64_t size) const;
};
