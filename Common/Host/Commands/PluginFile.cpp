#include "Commands/PluginFile.h"

#include "Commands/PluginSegments.h"

#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>

static std::string FormatChecksum(const PluginSegments& segments)
{
    std::string digits;
    for (std::uint32_t crc = segments.CalculateCrc(); digits.size() < 8; crc /= 16)
        digits.insert(digits.begin(), "0123456789abcdef"[crc % 16]);
    return digits;
}

PluginFile::PluginFile(const std::string& path)
    : descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC)), elf(nullptr, elf_end)
{
    if (descriptor.IsOpen() && elf_version(EV_CURRENT) != EV_NONE)
        elf.reset(elf_begin(descriptor.Get(), ELF_C_READ, nullptr));
}

PluginFile::PluginFile(std::string_view image) : descriptor(-1), image(image), elf(nullptr, elf_end)
{
    if (!image.empty() && elf_version(EV_CURRENT) != EV_NONE)
        elf.reset(elf_memory(const_cast<char*>(image.data()), image.size())); // which is read alone
}

PluginFile::~PluginFile() = default;

bool PluginFile::TryReadSection(const std::string& name, std::string& contents) const
{
    std::size_t names = 0;
    if (elf_kind(elf.get()) != ELF_K_ELF || elf_getshdrstrndx(elf.get(), &names) != 0)
        return false;
    for (Elf_Scn* scan = nullptr; (scan = elf_nextscn(elf.get(), scan)) != nullptr;) {
        GElf_Shdr header;
        const char* const found = gelf_getshdr(scan, &header) ? elf_strptr(elf.get(), names, header.sh_name) : nullptr;
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

std::string PluginFile::FindFault() const
try {
    if (!descriptor.IsOpen() && image.empty())
        return "";
    const PluginBytes bytes(descriptor.Get(), image);
    const PluginSegments segments(elf.get(), bytes);
    std::string checksum;
    if (TryReadSection(".ov.checksum", checksum) && checksum != FormatChecksum(segments))
        return "code or data do not match the checksum";
    return "";
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
