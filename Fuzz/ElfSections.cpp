// Reads texts out of the input as out of a plug-in's file.

#include "Commands/EmbeddedResource.h"
#include "MemoryFile.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(bytes), size);
    const MemoryFile file(input);
    for (const wchar_t* name : {L"HELP.TXT", L"version", L""}) {
        EmbeddedResource resource(file.GetPath(), name);
        std::size_t length = 0;
        while (!resource.EndOfFile())
            length += resource.ReadLine().Length();
        Require(length <= size, "a text is a part of the file");
    }
    return 0;
}
