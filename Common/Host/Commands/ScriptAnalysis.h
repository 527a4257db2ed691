#pragma once

#include "Text/WString.h"

#include <cstddef>
#include <vector>

/// A part of a line of a script. All count from 0, in characters; a line that continues another is one of its own.
struct TextRange
{
    std::size_t line = 0;
    std::size_t start = 0;
    std::size_t end = 0;
};

/// What is wrong with a script, or seems to be.
struct Finding
{
    bool isError = false; // what it points at, run by itself, fails with this message; else it is a warning
    WString code;         // "S012", by which it is explained and silenced
    TextRange place{};
    WString message;
    WString suggestion; // what may have been meant instead of the text at the place; may be empty
};

/// A line that sets a variable or runs a script.
struct ScriptSymbol
{
    enum class Kind
    {
        Variable,
        Script
    };

    Kind kind;
    WString name;
    WString detail; // the expression that gives the value; may be empty
    TextRange place{};
};

/// What reading a script without running it tells. Both are in the order of their places.
struct ScriptAnalysis
{
    std::vector<Finding> findings{};
    std::vector<ScriptSymbol> symbols{};
};
