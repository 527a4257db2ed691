#pragma once

#include "Commands/ArgumentList.h"
#include "Commands/Options.h"
#include "HostApi.h"
#include "Text/WString.h"

/// A command line is a name, and behind it options and arguments as far as the command's flags distinguish them.
namespace CommandLine {
/// Splits at the first white space behind the name; both parts are trimmed. A blank line has an empty name.
HOST_API void SplitName(const WString& line, WString& name, WString& rest);

/// Takes apart what follows the name. An option is a dash and a letter, with its value up to the next blank; a dash
/// before anything else starts an argument, and "--" ends the options. Double quotes group blanks and are dropped,
/// except in a single argument; inside them \" and \\ stand for a quote and a backslash. Throws
/// HostException(UnterminatedQuote).
HOST_API void Parse(const WString& rest, unsigned int flags, ArgumentList& arguments, Options& options);
} // namespace CommandLine
