#pragma once

#include "Commands/ArgumentList.h"
#include "Commands/Options.h"
#include "HostApi.h"
#include "Text/WString.h"

#include <cstddef>
#include <string_view>

/// A command line is a name, and behind it options and arguments as far as the command's flags distinguish them.
namespace CommandLine {
/// A piece of what stands behind the name.
struct Piece
{
    enum class Kind
    {
        Option,
        OptionsEnd, // "--"
        Argument
    };

    Kind kind = Kind::Argument;
    std::size_t start = 0;
    std::size_t end = 0;  // with the dash of an option, and with double quotes
    bool isClosed = true; // false where a double quote is missing
};

/// Finds the pieces, in their order, as the command's flags distinguish them (see Parse).
class HOST_API PieceReader
{
public:
    /// The text must outlive this.
    PieceReader(std::wstring_view rest, unsigned int flags) : text(rest), flags(flags) {}
    /// False behind the last piece.
    bool TryRead(Piece& piece);

private:
    const std::wstring_view text;
    const unsigned int flags;
    std::size_t position = 0;
    bool haveOptionsEnded = false;
};

/// A word without the double quotes that group blanks, and the backslashes that keep a quote from being one.
HOST_API WString Unquote(std::wstring_view word);

/// Splits at the first white space behind the name; both parts are trimmed. A blank line has an empty name.
HOST_API void SplitName(const WString& line, WString& name, WString& rest);

/// Takes apart what follows the name. An option is a dash and a letter, with its value up to the next blank; a dash
/// before anything else starts an argument, and "--" ends the options. Double quotes group blanks and are dropped,
/// except in a single argument; inside them \" and \\ stand for a quote and a backslash. Throws
/// HostException(UnterminatedQuote).
HOST_API void Parse(const WString& rest, unsigned int flags, ArgumentList& arguments, Options& options);
} // namespace CommandLine
