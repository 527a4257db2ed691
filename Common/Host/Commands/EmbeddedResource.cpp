#include "Commands/EmbeddedResource.h"

#include "Commands/CommandRegistry.h"
#include "Services/FileDescriptor.h"
#include "Text/HostError.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <gelf.h>
#include <libelf.h>
#include <memory>
#include <new>

namespace {
struct ElfEnder
{
    void operator()(Elf* elf) const noexcept { elf_end(elf); }
};

bool TryFindSection(Elf* elf, const std::string& section, std::string& contents)
{
    std::size_t names = 0;
    if (elf_kind(elf) != ELF_K_ELF || elf_getshdrstrndx(elf, &names) != 0)
        return false;
    for (Elf_Scn* scan = nullptr; (scan = elf_nextscn(elf, scan)) != nullptr;) {
        GElf_Shdr header;
        const char* name = gelf_getshdr(scan, &header) ? elf_strptr(elf, names, header.sh_name) : nullptr;
        if (!name || section != name)
            continue;
        const Elf_Data* data = elf_rawdata(scan, nullptr);
        if (!data)
            return false;
        contents.assign(static_cast<const char*>(data->d_buf), data->d_buf ? data->d_size : 0);
        return true;
    }
    return false;
}

bool TryReadSection(const std::string& file, const std::string& section, std::string& contents)
{
    const FileDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor.IsOpen() || elf_version(EV_CURRENT) == EV_NONE)
        return false;
    errno = 0;
    const std::unique_ptr<Elf, ElfEnder> elf(elf_begin(descriptor.Get(), ELF_C_READ, nullptr));
    const bool isFound = elf && TryFindSection(elf.get(), section, contents);
    if (!isFound && errno == ENOMEM) // which the library tells by no public number of its own
        throw std::bad_alloc();
    return isFound;
}

std::string GetSectionName(const wchar_t* resourceName)
{
    return ".ov." + WString(resourceName).ToUtf8();
}
} // namespace

EmbeddedResource::EmbeddedResource(const wchar_t* commandName, const wchar_t* resourceName)
{
    const CommandRegistry::Entry* entry = CommandRegistry::FindOrNull(commandName);
    if (!entry)
        throw HostException(HostError::FileError, WString(L"no command ") + commandName);
    const std::string section = GetSectionName(resourceName);
    if (!TryReadSection(entry->file, section, text))
        throw HostException(HostError::FileError, WString::FromUtf8(entry->file + ": no section " + section));
}

EmbeddedResource::EmbeddedResource(const std::string& file, const wchar_t* resourceName)
{
    TryReadSection(file, GetSectionName(resourceName), text);
}

WString EmbeddedResource::ReadLine()
{
    const std::string_view rest = std::string_view(text).substr(position);
    std::string_view line = rest.substr(0, rest.find('\n'));
    position += std::min(line.size() + 1, rest.size());
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return WString::FromUtf8(line);
}
