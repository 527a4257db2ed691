#pragma once

#include "Commands/ScriptAnalysis.h"
#include "HostApi.h"
#include "Instrument/Environment.h"
#include "Text/WString.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What may stand at a place of a command line.
struct Completion
{
    struct Candidate
    {
        WString text;    // what is to stand there, with the blank or brace that ends it
        WString label;   // what people call it: a function with its parameters
        WString meaning; // in one line: what it does, or its present value; may be empty
    };

    std::size_t start = 0; // of the piece that a candidate takes the place of; it ends at the cursor
    std::vector<Candidate> candidates{};
};

/// What is to be known of the word or reference at a place of a command line.
struct Explanation
{
    std::size_t start = 0; // of what is explained
    std::size_t end = 0;
    WString text; // lines; empty where there is nothing to tell
};

/// The call that a place of a command line stands in.
struct CallForm
{
    struct Parameter
    {
        std::size_t start; // in the form
        std::size_t end;
    };

    WString form;    // "Round(number, decimals)"; empty outside of calls
    WString meaning; // in one line; may be empty
    std::vector<Parameter> parameters{};
    std::size_t active = 0; // the parameter at the place; may be beyond the last one
};

/// Knows the language of command lines, for whoever helps people to write them. A plug-in brings it: an object of a
/// derived class that lives as long as its library. For one thread.
class HOST_API ScriptAssistant
{
public:
    virtual ~ScriptAssistant();
    ScriptAssistant(const ScriptAssistant&) = delete;
    ScriptAssistant& operator=(const ScriptAssistant&) = delete;

    /// What may stand at the cursor, sorted, as it looks from the text before it. `environment` has the variables.
    virtual Completion Complete(std::wstring_view line, std::size_t cursor, const Environment& environment) const = 0;

    /// Reads a script, in UTF-8, without running it. `path` is its file, from which the scripts that it runs are found;
    /// empty when it has none. `variables` has those that are set before the script begins.
    virtual ScriptAnalysis Analyse(
        std::string_view script, const std::string& path, const Environment& variables) const = 0;
    /// What is to be known of the command, option, function, variable or reference at the cursor.
    virtual Explanation Explain(std::wstring_view line, std::size_t cursor, const Environment& environment) const = 0;
    virtual CallForm DescribeCall(std::wstring_view line, std::size_t cursor) const = 0;
    /// The command line with its blanks and the case of its commands and keywords as they are usually written, and the
    /// same meaning.
    virtual WString Format(const WString& line) const = 0;

    /// The one that was made last; null while no plug-in has brought one.
    static const ScriptAssistant* GetOrNull() noexcept;

protected:
    ScriptAssistant() noexcept;
};
