#pragma once

#include "HostApi.h"
#include "Instrument/Environment.h"
#include "Text/WString.h"

#include <cstddef>
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

    /// The one that was made last; null while no plug-in has brought one.
    static const ScriptAssistant* GetOrNull() noexcept;

protected:
    ScriptAssistant() noexcept;
};
