// Reads texts out of the input as out of a plug-in's file, and checks it as one.

#include "Commands/PluginFile.h"
#include "MemoryFile.h"
#include "Require.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view input(reinterpret_cast<const char*>(bytes), size);
    const MemoryFile file(input);
    const PluginFile inFile(file.GetPath());
    const PluginFile inMemory(input);
    for (const char* name : {".ov.HELP.TXT", ".ov.version", ".ov."}) {
        std::string fromFile;
        std::string fromMemory;
        Require(inFile.TryReadSection(name, fromFile) == inMemory.TryReadSection(name, fromMemory) &&
                fromFile == fromMemory,
            "a file has the sections of its image");
        Require(fromFile.size() <= size, "a text is a part of the file");
    }
    Require(inFile.FindFault() == inMemory.FindFault(), "a file has the fault of its image");
    Require(inFile.CalculateChecksum() == inMemory.CalculateChecksum(), "a file has the checksum of its image");
    return 0;
}
