#pragma once

#include "Commands/ScriptAssistant.h"
#include "LanguageServer/Positions.h"
#include "Text/WString.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A command of a script, its lines joined.
struct ScriptCommand
{
    /// A place within the lines, counted in characters.
    struct Place
    {
        std::size_t line; // of the script
        std::size_t character;
    };

    std::size_t firstLine = 0;
    std::vector<std::size_t> lengths{}; // what each of its lines gives, in characters
    WString text{};

    bool Contains(std::size_t line) const { return line >= firstLine && line - firstLine < lengths.size(); }
    std::size_t FindOffset(const Place& place) const;
    /// Of an offset where two lines meet, the end of the former one.
    Place FindPlace(std::size_t offset) const;
};

/// A script that a client has open, with what is known of it. Lines end in LF or CR LF.
class Document
{
public:
    Document(const std::string& path, std::string text) : path(path) { SetText(std::move(text)); }

    /// The file's; empty when there is none.
    const std::string& GetPath() const { return path; }
    void SetText(std::string newText);
    /// Puts `with` in the place of the bytes.
    void Replace(std::size_t start, std::size_t end, const std::string& with);

    std::size_t CountLines() const { return lineStarts.size(); }
    /// Without its end; empty behind the last one.
    std::string_view GetLine(std::size_t line) const;
    /// The byte of the text at a place; places outside count as the nearest one inside.
    std::size_t FindOffset(std::size_t line, std::size_t units, PositionUnit unit) const;

    /// The command that the line is part of: an empty one on a blank line, none on a comment.
    std::optional<ScriptCommand> FindCommand(std::size_t line) const;
    std::vector<ScriptCommand> ReadCommands() const;

    /// What reading the script tells, read again only after a change.
    const ScriptAnalysis& GetAnalysis(const ScriptAssistant& assistant);
    void ForgetAnalysis() { analysis.reset(); }
    /// The variables that lines above set, with the expressions that they are set to.
    Environment GetVariables(std::size_t line, const ScriptAssistant& assistant);

private:
    const std::string path;
    std::string text;
    std::vector<std::size_t> lineStarts;
    std::optional<ScriptAnalysis> analysis;

    void FindLines();
};
