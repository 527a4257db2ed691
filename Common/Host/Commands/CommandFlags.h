#pragma once

/// Flags of a command, in one word: the first four are set by its constructor, the last three by the run. Nothing here
/// reads inheritedOutput; it is set for other hosts.
namespace CommandFlags {
constexpr unsigned int noSubstitution = 1u << 31; // the argument text is taken as it stands
constexpr unsigned int singleArgument = 1u << 30; // all that follows the options is one argument, trimmed
constexpr unsigned int optionsFirst = 1u << 6;    // options come before the argument
constexpr unsigned int endsByInterrupt = 1u << 5; // Ctrl-C is how people end it, and no failure to them
constexpr unsigned int inheritedOutput = 0x100;   // run by another command, on its output
constexpr unsigned int toleratesFailure = 0x1;    // the caller deals with a failing code
constexpr unsigned int noFailureLog = 0x800;      // failures are not written to the error log

/// The options, then the rest of the line as it stands.
constexpr unsigned int restAsItStands = noSubstitution | singleArgument | optionsFirst;
} // namespace CommandFlags
