#include "Commands/EmbeddedResource.h"

#include "Commands/CommandRegistry.h"
#include "Commands/PluginFile.h"
#include "Text/HostError.h"

#include <algorithm>

static std::string GetSectionName(const wchar_t* resourceName)
{
    return ".ov." + WString(resourceName).ToUtf8();
}

EmbeddedResource::EmbeddedResource(const wchar_t* commandName, const wchar_t* resourceName)
{
    const CommandRegistry::Entry* entry = CommandRegistry::FindOrNull(commandName);
    if (!entry)
        throw HostException(HostError::FileError, WString(L"no command ") + commandName);
    const std::string section = GetSectionName(resourceName);
    if (!PluginFile(entry->file).TryReadSection(section, text))
        throw HostException(HostError::FileError, WString::FromUtf8(entry->file + ": no section " + section));
}

EmbeddedResource::EmbeddedResource(const std::string& file, const wchar_t* resourceName)
{
    PluginFile(file).TryReadSection(GetSectionName(resourceName), text);
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
