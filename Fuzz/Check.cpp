// Analyses whatever the fuzzer thinks of, as a script, with the plug-ins as they are loaded.

#include "ScriptTools/LoadedTools.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const LoadedTools tools;
    const std::string_view script(reinterpret_cast<const char*>(bytes), size);
    tools->Analyse(script, "", Environment());
    return 0;
}
