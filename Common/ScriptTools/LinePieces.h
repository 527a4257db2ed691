#pragma once

#include "Commands/CommandRegistry.h"
#include "LineParts.h"

/// A piece of a command line. Between the pieces stand blanks, and what separates the parts of an argument without
/// being a keyword.
struct LinePiece
{
    enum class Kind
    {
        Command,   // the name of a known one
        Option,    // with its value; "--" too
        Keyword,   // in front of a part of the arguments
        Separator, // of a list of commands
        Argument   // of the kind `argument`, as it stands
    };

    Kind kind;
    Span place;
    const CommandRegistry::Entry* command = nullptr; // the name's; else the one that the piece belongs to, or null
    ArgumentKind argument = ArgumentKind::Text;
};

/// The pieces, in their order, of a command line and the commands in it. A line that does not begin with the name of a
/// command is an expression.
std::vector<LinePiece> ReadLinePieces(std::wstring_view line);
