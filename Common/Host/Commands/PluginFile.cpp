#include "Commands/PluginFile.h"

#include "Commands/PluginSegments.h"

#include <cerrno>
#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>
#include <new>

static constexpr const char* checksumSection = ".ov.checksum";

/// Its contents. They repeat the name, so that it is found in a file whose table of sections no longer leads there.
static std::string FormatChecksum(const PluginSegments& segments)
{
    std::string digits;
    for (std::uint32_t crc = segments.CalculateCrc(); digits.size() < 8; crc /= 16)
        digits.insert(digits.begin(), "0123456789abcdef"[crc % 16]);
    return checksumSection + (" " + digits);
}

/// The library tells this by no public number of its own.
static void ThrowIfOutOfMemory()
{
    if (errno == ENOMEM)
        throw std::bad_alloc();
}

static bool TryFindSection(Elf* elf, const std::string& name, std::string& contents)
{
    std::size_t names = 0;
    if (elf_kind(elf) != ELF_K_ELF || elf_getshdrstrndx(elf, &names) != 0)
        return false;
    for (Elf_Scn* scan = nullptr; (scan = elf_nextscn(elf, scan)) != nullptr;) {
        GElf_Shdr header;
        const char* const found = gelf_getshdr(scan, &header) ? elf_strptr(elf, names, header.sh_name) : nullptr;
        if (!found || name != found)
            continue;
        const Elf_Data* const data = elf_rawdata(scan, nullptr);
        if (!data)
            return false;
        contents.assign(static_cast<const char*>(data->d_buf), data->d_buf ? data->d_size : 0);
        return true;
    }
    return false;
}

PluginFile::PluginFile(const std::string& path)
    : descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)), elf(nullptr, elf_end)
{
    if (!descriptor.IsOpen() || elf_version(EV_CURRENT) == EV_NONE)
        return;
    errno = 0;
    elf.reset(elf_begin(descriptor.Get(), ELF_C_READ, nullptr));
    if (!elf)
        ThrowIfOutOfMemory();
}

PluginFile::PluginFile(std::string_view image) : descriptor(-1), image(image), elf(nullptr, elf_end)
{
    if (!image.empty() && elf_version(EV_CURRENT) != EV_NONE)
        elf.reset(elf_memory(const_cast<char*>(image.data()), image.size())); // which is read alone
}

PluginFile::~PluginFile() = default;

bool PluginFile::TryReadSection(const std::string& name, std::string& contents) const
{
    errno = 0;
    const bool isFound = TryFindSection(elf.get(), name, contents);
    if (!isFound)
        ThrowIfOutOfMemory();
    return isFound;
}

std::string PluginFile::FindFault() const
try {
    if (!descriptor.IsOpen() && image.empty())
        return "";
    const PluginBytes bytes(descriptor.Get(), image);
    const PluginSegments segments(elf.get(), bytes);
    std::string checksum;
    if (!TryReadSection(checksumSection, checksum))
        return bytes.Contain(checksumSection) ? "the table of sections is damaged" : "";
    return checksum == FormatChecksum(segments) ? "" : "code or data do not match the checksum";
} catch (const PluginFault& fault) {
    return fault.text;
}

std::string PluginFile::CalculateChecksum() const
try {
    const PluginBytes bytes(descriptor.Get(), image);
    return FormatChecksum(PluginSegments(elf.get(), bytes));
} catch (const PluginFault&) {
    return "";
}
