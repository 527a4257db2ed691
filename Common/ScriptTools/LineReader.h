#pragma once

#include "Commands/CommandRegistry.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// What is expected at the end of a command line that is not finished.
struct Place
{
    enum class Kind
    {
        Nothing,
        Command,
        Option,
        Operand,       // of an expression
        Operator,      // behind an operand
        ReferenceKind, // "%S{"
        Reference,     // a name in its braces
        Argument       // of the kind `argument`, as one word
    };

    Kind kind = Kind::Nothing;
    std::size_t start = 0;                  // of the piece that is being written, which may be empty
    const CommandRecord* command = nullptr; // whose option it is
    ArgumentKind argument = ArgumentKind::Text;
    wchar_t reference = 0;                  // the letter of the reference's kind
    bool isQuoted = false;                  // a word in double quotes
    std::vector<const wchar_t*> keywords{}; // that may follow, of all commands around
};

/// Reads the beginning of a command line. One whose first word is not the name of a command, nor the beginning of one,
/// is read as an expression.
Place ReadPlace(std::wstring_view line);
