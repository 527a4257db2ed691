// Reads the input as a script, both from memory and from a file, which must give the same commands.

#include "Commands/ScriptReader.h"
#include "Commands/CommandRunner.h"
#include "Commands/ScriptText.h"
#include "FileLines.h"
#include "MemoryFile.h"
#include "Require.h"
#include "Text/HostError.h"

#include <cstdint>
#include <numeric>
#include <optional>

namespace {

struct Command
{
    std::string text;
    unsigned int line;
    std::vector<std::size_t> lineSizes;
    unsigned int spoiltLine;
    std::string lineBefore;

    bool operator==(const Command&) const = default;
};

void Check(const Command& command, unsigned int formerLine)
{
    const std::size_t size = std::accumulate(command.lineSizes.begin(), command.lineSizes.end(), std::size_t(0));
    const auto lastLine = command.line + static_cast<unsigned int>(command.lineSizes.size()) - 1;
    Require(size == command.text.size(), "a command is made of its lines");
    Require(size <= CommandRunner::maxLineLength + 1, "a command is cut behind the first byte too many");
    Require(command.line > formerLine, "commands come in their order");
    Require(command.spoiltLine <= lastLine, "a spoilt line is one of those read");
    Require(command.text.find('\n') == command.text.npos, "a command holds no end of a line");
    Require(command.lineBefore.empty() || ScriptReader::IsBlankOrComment(command.lineBefore),
        "in front of a command stands none");
}

std::vector<Command> Read(LineSource& lines)
{
    ScriptReader reader(lines);
    std::vector<Command> commands;
    for (std::string text; reader.TryRead(text);) {
        const unsigned int formerLine = commands.empty() ? 0 : commands.back().line;
        commands.push_back(
            {text, reader.GetLine(), reader.GetLineSizes(), reader.GetSpoiltLine(), reader.GetLineBefore()});
        Check(commands.back(), formerLine);
    }
    return commands;
}

/// None when it is refused.
template <typename Source>
std::optional<std::vector<Command>> TryRead(const Source& read)
try {
    return read();
} catch (const HostException& failure) {
    Require(IsHostError(failure, HostError::FileError), "a script is refused as a file");
    return std::nullopt;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(bytes), size);
    const auto fromMemory = TryRead([&] {
        const std::string text = DecodeScriptText(std::string(input), "script");
        TextLines lines(text);
        return Read(lines);
    });
    const MemoryFile file(input);
    const auto fromFile = TryRead([&] {
        FileLines lines(file.GetPath());
        return Read(lines);
    });
    Require(fromMemory == fromFile, "a file gives the commands that its text gives");
    return 0;
}
