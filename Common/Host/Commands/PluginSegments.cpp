#include "Commands/PluginSegments.h"

#include "Services/Crc.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <libelf.h>
#include <limits>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

// The header of this library, which was made for this processor; the linker defines it.
extern "C" const ElfW(Ehdr) __ehdr_start // NOLINT(bugprone-reserved-identifier)
    __attribute__((visibility("hidden")));

static constexpr std::size_t blockSize = 0x10000; // a stack may be small

[[noreturn]] static void FailPlugin(const std::string& text)
{
    throw PluginFault{text};
}

PluginBytes::PluginBytes(int descriptor, std::string_view image)
    : descriptor(descriptor), image(image), size(image.size())
{
    struct stat status;
    if (descriptor >= 0 && fstat(descriptor, &status) == 0)
        size = static_cast<std::uint64_t>(status.st_size);
}

void PluginBytes::Read(std::uint64_t offset, void* buffer, std::size_t count) const
{
    const auto fail = [&] { FailPlugin("byte " + std::to_string(offset) + " cannot be read"); };
    if (offset > size || count > size - offset)
        fail();
    if (descriptor < 0) {
        std::copy_n(image.begin() + static_cast<std::ptrdiff_t>(offset), count, static_cast<char*>(buffer));
        return;
    }
    for (char* next = static_cast<char*>(buffer); count > 0;) {
        const ssize_t got = pread(descriptor, next, count, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            fail(); // cut short meanwhile
        next += got;
        offset += static_cast<std::uint64_t>(got);
        count -= static_cast<std::size_t>(got);
    }
}

bool PluginBytes::Contain(std::string_view text) const
{
    std::string block;
    for (std::uint64_t offset = 0; offset < size; offset += blockSize) {
        const std::string last = block.substr(block.size() - std::min(block.size(), text.size()));
        block.resize(static_cast<std::size_t>(std::min<std::uint64_t>(blockSize, size - offset)));
        Read(offset, block.data(), block.size());
        block.insert(0, last);
        if (block.find(text) != block.npos)
            return true;
    }
    return false;
}

static bool IsPowerOfTwo(std::uint64_t number)
{
    return number != 0 && (number & (number - 1)) == 0;
}

PluginSegments::PluginSegments(Elf* elf, const PluginBytes& bytes) : bytes(bytes)
{
    const GElf_Ehdr header = CheckHeader(elf);
    GElf_Phdr dynamic{};
    for (int index = 0; index < header.e_phnum; ++index) {
        const std::string name = "segment " + std::to_string(index);
        GElf_Phdr segment;
        if (!gelf_getphdr(elf, index, &segment))
            FailPlugin(name + ": " + elf_errmsg(-1));
        if (segment.p_type == PT_LOAD)
            AddLoaded(segment, name);
        if (segment.p_type == PT_DYNAMIC)
            dynamic = segment;
    }
    if (!Holds(dynamic))
        FailPlugin("the dynamic section is in no segment");
}

static bool HasSectionNames(Elf* elf)
{
    std::size_t names = 0;
    GElf_Shdr header;
    return elf_getshdrstrndx(elf, &names) == 0 && gelf_getshdr(elf_getscn(elf, names), &header) &&
        header.sh_type == SHT_STRTAB && elf_strptr(elf, names, header.sh_name);
}

/// The words for what is no ELF file of this processor are those of the dynamic loader.
GElf_Ehdr PluginSegments::CheckHeader(Elf* elf) const
{
    GElf_Ehdr header;
    if (bytes.GetSize() < sizeof(ElfW(Ehdr)))
        FailPlugin("file too short");
    if (elf_kind(elf) != ELF_K_ELF || !gelf_getehdr(elf, &header))
        FailPlugin("invalid ELF header");
    for (const int index : {EI_CLASS, EI_DATA, EI_VERSION}) {
        if (header.e_ident[index] != __ehdr_start.e_ident[index])
            FailPlugin("made for another kind of processor");
    }
    if (header.e_machine != __ehdr_start.e_machine)
        FailPlugin("made for another processor, number " + std::to_string(header.e_machine));
    if (header.e_type != ET_DYN)
        FailPlugin("not a shared library");
    if (header.e_phentsize != sizeof(ElfW(Phdr)))
        FailPlugin("wrong size of the entries of the program header");
    const auto checkTable = [&](const char* what, std::uint64_t offset, std::uint64_t length) {
        if (offset > bytes.GetSize() || length > bytes.GetSize() - offset)
            FailPlugin("cut short: " + std::string(what) + " stands at byte " + std::to_string(offset) +
                ", the file has " + std::to_string(bytes.GetSize()));
    };
    checkTable("the program header", header.e_phoff, std::uint64_t{header.e_phnum} * header.e_phentsize);
    checkTable("the table of sections", header.e_shoff, std::uint64_t{header.e_shnum} * header.e_shentsize);
    if (header.e_shoff != 0 && !HasSectionNames(elf))
        FailPlugin("the table of sections is damaged"); // where the checksum is found
    return header;
}

void PluginSegments::AddLoaded(const GElf_Phdr& segment, const std::string& name)
{
    if (segment.p_offset > bytes.GetSize() || segment.p_filesz > bytes.GetSize() - segment.p_offset)
        FailPlugin("cut short: " + name + " has " + std::to_string(segment.p_filesz) + " bytes from byte " +
            std::to_string(segment.p_offset) + ", the file has " + std::to_string(bytes.GetSize()));
    if (segment.p_memsz < segment.p_filesz)
        FailPlugin(name + " is larger in the file than in memory");
    if (segment.p_memsz > segment.p_filesz && (segment.p_flags & PF_W) == 0)
        FailPlugin(name + " is smaller in the file than in memory, and cannot be written");
    // Half of all addresses: sums of two stay within them.
    constexpr std::uint64_t limit = std::numeric_limits<ElfW(Addr)>::max() / 2;
    if (segment.p_vaddr > limit || segment.p_memsz > limit - segment.p_vaddr)
        FailPlugin(name + " goes beyond the memory");
    if (!IsPowerOfTwo(segment.p_align) || (segment.p_vaddr - segment.p_offset) % segment.p_align != 0)
        FailPlugin(name + " is not aligned");
    if ((segment.p_flags & PF_R) == 0)
        FailPlugin(name + " cannot be read");
    const GElf_Phdr before = loaded.empty() ? GElf_Phdr{} : loaded.back();
    if (segment.p_vaddr < before.p_vaddr + before.p_memsz || segment.p_offset < before.p_offset + before.p_filesz)
        FailPlugin(name + " begins before the end of the one before it");
    loaded.push_back(segment);
}

/// Whether a loaded segment holds this one, and has it in the file.
bool PluginSegments::Holds(const GElf_Phdr& segment) const
{
    return segment.p_filesz > 0 && std::ranges::any_of(loaded, [&](const GElf_Phdr& other) {
        return segment.p_vaddr >= other.p_vaddr && segment.p_memsz <= other.p_filesz &&
            segment.p_vaddr - other.p_vaddr <= other.p_filesz - segment.p_memsz;
    });
}

std::uint32_t PluginSegments::CalculateCrc() const
{
    ElfW(Ehdr) header;
    bytes.Read(0, &header, sizeof header);
    header.e_shoff = 0;
    header.e_shnum = header.e_shstrndx = 0;
    std::uint32_t crc = ::CalculateCrc(&header, sizeof header);
    std::vector<char> block(blockSize);
    for (const GElf_Phdr& segment : loaded) {
        const std::uint64_t end = segment.p_offset + segment.p_filesz;
        std::uint64_t offset = std::max<std::uint64_t>(segment.p_offset, sizeof(ElfW(Ehdr)));
        while (offset < end) {
            const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(block.size(), end - offset));
            bytes.Read(offset, block.data(), count);
            crc = ::CalculateCrc(block.data(), count, crc);
            offset += count;
        }
    }
    return crc;
}
