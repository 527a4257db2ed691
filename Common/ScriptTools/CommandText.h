#pragma once

#include "Commands/CommandRegistry.h"
#include "LineParts.h"

#include <optional>
#include <string_view>
#include <vector>

struct CommandText;

/// An option as it is written.
struct OptionText
{
    Span place;                        // with its dash
    WString text;                      // without, as the command sees it
    const OptionRecord* row = nullptr; // null when the command has no such option
    bool isJudged = true;              // false when a value that nobody knows yet is part of it
};

/// A part of what a command takes, trimmed.
struct PartText
{
    Span place;
    const ArgumentRecord* record = nullptr;
    std::vector<CommandText> commands; // in it
    std::vector<Span> delimiters{};    // of a list
};

/// A command line, read as a run of it would read it. Places are those of the line.
struct CommandText
{
    Span place; // trimmed; empty for a blank line
    Span name;
    const CommandRegistry::Entry* entry = nullptr; // null when there is no command of that name
    std::vector<OptionText> options{};
    Span optionsEnd{};                       // the "--", if it is there
    Span file{};                             // in front of the argument, for an option without its value
    std::vector<Span> words{};               // the arguments, with their quotes
    std::vector<PartText> parts{};           // of the first argument
    const ArgumentRecord* missing = nullptr; // the part whose separator is not there, although it must
    Span emptyBehind{};                      // the last separator, when nothing stands behind it that must; else empty
    std::vector<Span> references{};          // that are replaced by their values before the command sees its line
    bool isClosed = true;                    // false where a double quote or the brace of a reference is missing
    wchar_t delimiter = L';';                // of its lists; 0 when the option for it is wrong

    /// Whether a reference within is replaced, so that what the command sees is not known.
    bool DependsOnValue(Span part) const;
    bool HasOption(std::wstring_view name) const;
};

/// Reads a part of a line. What is nested deeper than a run would go is left out.
CommandText ReadCommandText(std::wstring_view line, Span part);

/// Calls `visit` with the command and all commands in it, outer ones first.
template <typename Visit>
void VisitCommands(const CommandText& command, const Visit& visit)
{
    visit(command);
    for (const PartText& part : command.parts) {
        for (const CommandText& inner : part.commands)
            VisitCommands(inner, visit);
    }
}
