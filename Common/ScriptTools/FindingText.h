#pragma once

#include "Commands/Pipe.h"
#include "Commands/ScriptAnalysis.h"

#include <string>
#include <vector>

/// What is found in a script, for people: "file:line:column: error: message [S001]", the line, and a caret under the
/// place. Coloured for a terminal.
class FindingText
{
public:
    FindingText(const std::string& script, const WString& name, bool isColoured);

    void Write(const Finding& finding, Pipe& output);

private:
    const WString name;
    const bool isColoured;
    std::vector<std::string> lines;
    std::size_t shownNumber = static_cast<std::size_t>(-1);
    WString shown; // the line of that number

    const WString& GetLine(std::size_t number);
    WString Paint(const WString& text, const wchar_t* colour) const;
};

/// The same as an object of JSON, in one line.
WString FormatAsJson(const Finding& finding, const WString& name);
