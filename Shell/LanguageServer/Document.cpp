#include "LanguageServer/Document.h"

#include "Commands/ScriptReader.h"
#include "Commands/ScriptText.h"

#include <algorithm>
#include <numeric>

std::size_t ScriptCommand::FindOffset(const Place& place) const
{
    const std::size_t index = place.line - firstLine;
    const auto line = lengths.begin() + static_cast<std::ptrdiff_t>(index);
    return std::accumulate(lengths.begin(), line, std::size_t(0)) + std::min(place.character, *line);
}

ScriptCommand::Place ScriptCommand::FindPlace(std::size_t offset) const
{
    std::size_t index = 0;
    for (; index + 1 < lengths.size() && offset > lengths[index]; ++index)
        offset -= lengths[index];
    return {firstLine + index, offset};
}

void Document::SetText(std::string newText)
{
    text = std::move(newText);
    FindLines();
}

void Document::Replace(std::size_t start, std::size_t end, const std::string& with)
{
    text.replace(start, end - start, with);
    FindLines();
}

void Document::FindLines()
{
    lineStarts = {0};
    for (std::size_t end = 0; (end = text.find('\n', end)) != std::string::npos;)
        lineStarts.push_back(++end);
    ForgetAnalysis();
}

std::string_view Document::GetLine(std::size_t line) const
{
    if (line >= lineStarts.size())
        return {};
    const bool isLast = line + 1 == lineStarts.size();
    const std::size_t end = isLast ? text.size() : lineStarts[line + 1] - 1;
    std::string_view found = std::string_view(text).substr(lineStarts[line], end - lineStarts[line]);
    if (!isLast && found.ends_with('\r'))
        found.remove_suffix(1);
    return found;
}

std::size_t Document::FindOffset(std::size_t line, std::size_t units, PositionUnit unit) const
{
    return line < lineStarts.size() ? lineStarts[line] + FindByte(GetLine(line), units, unit) : text.size();
}

namespace {
/// Reads the commands one by one.
class CommandReader
{
public:
    explicit CommandReader(std::string_view text) : lines(text), reader(lines) {}

    bool TryRead(ScriptCommand& command)
    {
        std::string joined;
        if (!reader.TryRead(joined))
            return false;
        command.firstLine = reader.GetLine() - 1;
        command.lengths.clear();
        command.text = WString::FromUtf8(joined);
        std::string_view rest = joined;
        for (const std::size_t size : reader.GetLineSizes()) {
            command.lengths.push_back(CountUnits(rest.substr(0, size), PositionUnit::Character));
            rest.remove_prefix(size);
        }
        return true;
    }

private:
    TextLines lines;
    ScriptReader reader;
};
} // namespace

std::optional<ScriptCommand> Document::FindCommand(std::size_t line) const
{
    CommandReader reader(text);
    for (ScriptCommand command; reader.TryRead(command) && command.firstLine <= line;) {
        if (command.Contains(line))
            return command;
    }
    const WString blanks = WString::FromUtf8(GetLine(line));
    if (!blanks.Trim().IsEmpty())
        return std::nullopt;
    return ScriptCommand{line, {blanks.Length()}, blanks};
}

std::vector<ScriptCommand> Document::ReadCommands() const
{
    std::vector<ScriptCommand> commands;
    CommandReader reader(text);
    for (ScriptCommand command; reader.TryRead(command);)
        commands.push_back(command);
    return commands;
}

const ScriptAnalysis& Document::GetAnalysis(const ScriptAssistant& assistant)
{
    if (!analysis)
        analysis = assistant.Analyse(text, path, Environment());
    return *analysis;
}

Environment Document::GetVariables(std::size_t line, const ScriptAssistant& assistant)
{
    Environment variables;
    for (const ScriptSymbol& symbol : GetAnalysis(assistant).symbols) {
        if (symbol.kind == ScriptSymbol::Kind::Variable && symbol.place.line < line)
            variables.SetString(symbol.name, symbol.detail);
    }
    return variables;
}
