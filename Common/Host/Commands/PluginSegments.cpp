#include "Commands/PluginSegments.h"

#include "Services/Crc.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <libelf.h>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>

// The header of this library, which was made for this processor; the linker defines it.
extern "C" const ElfW(Ehdr) __ehdr_start __attribute__((visibility("hidden")));

void FailPlugin(const std::string& text)
{
    throw PluginFault{text};
}

std::string Hexadecimal(std::uint64_t number)
{
    std::string text;
    for (; number != 0 || text.empty(); number /= 16)
        text.insert(text.begin(), "0123456789abcdef"[number % 16]);
    return "0x" + text;
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

static bool IsPowerOfTwo(std::uint64_t number)
{
    return number != 0 && (number & (number - 1)) == 0;
}

PluginSegments::PluginSegments(Elf* elf, const PluginBytes& bytes) : bytes(bytes)
{
    const GElf_Ehdr header = CheckHeader(elf);
    tableOffset = header.e_phoff;
    std::vector<GElf_Phdr> segments(header.e_phnum);
    const auto name = [](std::size_t index) { return "segment " + std::to_string(index); };
    for (std::size_t index = 0; index < segments.size(); ++index) {
        if (!gelf_getphdr(elf, static_cast<int>(index), &segments[index]))
            FailPlugin(name(index) + ": " + elf_errmsg(-1));
        if (segments[index].p_type == PT_LOAD)
            AddLoaded(segments[index], name(index));
    }
    for (std::size_t index = 0; index < segments.size(); ++index)
        CheckWithin(segments[index], name(index));
    if (dynamic.p_type != PT_DYNAMIC)
        FailPlugin("it has no dynamic section");
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

/// Checks what tells about a part of the loaded segments.
void PluginSegments::CheckWithin(const GElf_Phdr& segment, const std::string& name)
{
    const auto require = [&](bool holds, const char* fault) {
        if (!holds)
            FailPlugin(name + fault);
    };
    constexpr std::uint64_t threadLimit = 0x1000000; // more than any library has, and what is always to be had
    switch (segment.p_type) {
    case PT_DYNAMIC:
        require(dynamic.p_type == PT_NULL, " is a second dynamic section");
        dynamic = segment;
        require(Holds(segment.p_vaddr, segment.p_memsz, PF_W), ", the dynamic section, is in no loaded segment");
        break;
    case PT_TLS:
        threadSize = segment.p_memsz;
        require(segment.p_filesz <= segment.p_memsz && segment.p_memsz <= threadLimit &&
                IsPowerOfTwo(segment.p_align) && segment.p_align <= threadLimit,
            ", the memory of threads, has an impossible size");
        require(
            segment.p_filesz <= CountBytesFrom(segment.p_vaddr), ", the memory of threads, is in no loaded segment");
        break;
    case PT_PHDR:
        require(segment.p_memsz <= CountBytesFrom(segment.p_vaddr) &&
                Locate("the program header", segment.p_vaddr, segment.p_memsz) == tableOffset,
            " is not the program header");
        break;
    case PT_GNU_RELRO:
        // Some linkers let it end with the page.
        require(std::ranges::any_of(loaded,
                    [&](const GElf_Phdr& other) {
                        const std::uint64_t end = other.p_memsz + (other.p_align - 1);
                        return (other.p_flags & PF_W) != 0 && segment.p_vaddr >= other.p_vaddr &&
                            segment.p_memsz <= end && segment.p_vaddr - other.p_vaddr <= end - segment.p_memsz;
                    }),
            " is in no segment that can be written");
        break;
    case PT_GNU_EH_FRAME:
        require(segment.p_memsz <= CountBytesFrom(segment.p_vaddr), " is in no loaded segment");
        break;
    case PT_NOTE:
    case PT_GNU_PROPERTY: CheckNotes(segment, name); break;
    default: break;
    }
}

void PluginSegments::CheckNotes(const GElf_Phdr& segment, const std::string& name) const
{
    const std::uint64_t alignment = segment.p_align == 8 ? 8 : 4;
    const auto align = [&](std::uint64_t size) { return (size + alignment - 1) / alignment * alignment; };
    std::uint64_t left = segment.p_memsz;
    for (std::uint64_t address = segment.p_vaddr; left > 0;) {
        const auto header = Read<ElfW(Nhdr)>(name.c_str(), address, 1).front();
        const std::uint64_t size = align(sizeof header + header.n_namesz) + header.n_descsz;
        if (size > left || size > CountBytesFrom(address))
            FailPlugin(name + " has a note that is too long");
        left -= std::min(align(size), left);
        address += align(size);
    }
}

bool PluginSegments::Holds(std::uint64_t address, std::uint64_t size, unsigned int flags) const
{
    return std::ranges::any_of(loaded, [&](const GElf_Phdr& segment) {
        return (segment.p_flags & flags) == flags && address >= segment.p_vaddr && size <= segment.p_memsz &&
            address - segment.p_vaddr <= segment.p_memsz - size;
    });
}

const GElf_Phdr* PluginSegments::FindInFileOrNull(std::uint64_t address) const
{
    const auto found = std::ranges::find_if(loaded, [&](const GElf_Phdr& segment) {
        return address >= segment.p_vaddr && address - segment.p_vaddr < segment.p_filesz;
    });
    return found == loaded.end() ? nullptr : &*found;
}

std::uint64_t PluginSegments::CountBytesFrom(std::uint64_t address) const
{
    const GElf_Phdr* const segment = FindInFileOrNull(address);
    return segment ? segment->p_filesz - (address - segment->p_vaddr) : 0;
}

std::uint64_t PluginSegments::Locate(const char* what, std::uint64_t address, std::uint64_t size) const
{
    const GElf_Phdr* const segment = FindInFileOrNull(address);
    if (!segment || size > CountBytesFrom(address))
        FailAt(what, address);
    return segment->p_offset + (address - segment->p_vaddr);
}

std::uint32_t PluginSegments::CalculateCrc() const
{
    std::uint32_t crc = 0;
    std::array<char, 0x10000> block;
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

void PluginSegments::FailAt(const char* what, std::uint64_t address)
{
    FailPlugin(std::string(what) + " at " + Hexadecimal(address) + " is in no loaded segment");
}
