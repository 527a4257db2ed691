#pragma once

#include "Commands/ArgumentRecord.h"
#include "Commands/CommandFlags.h"
#include "Commands/OptionRecord.h"

#include <span>

class CommandBase;

/// Makes a command, which the caller owns.
using CommandFactory = CommandBase* (*)();

/// One line of a usage text: a format of Pipe::WriteLine, and the text for the "%s" in it if there is one.
struct UsageLine
{
    constexpr UsageLine(const wchar_t* format, const wchar_t* argument = L"") : format(format), argument(argument) {}

    const wchar_t* format;
    const wchar_t* argument;
};

/// How many arguments a command takes, unless an option changes that.
struct ArgumentCount
{
    static constexpr unsigned int any = ~0u;

    unsigned int least = 0;
    unsigned int most = any;
};

/// All that there is to know of a command before it is made. Lives as long as the command's library.
struct CommandRecord
{
    const wchar_t* name; // matches in any case
    unsigned int id;
    CommandFactory factory;
    std::span<const UsageLine> usage;
    std::span<const OptionRecord> options = {};
    unsigned int flags = 0;                         // CommandFlags, those of the constructor
    std::span<const ArgumentRecord> arguments = {}; // in their order
    ArgumentCount argumentCount = {};
    std::span<const wchar_t* const> variables = {}; // that it may set, besides one that it is told to
};

/// Exit numbers that mean the same in all commands.
namespace CommonExit {
constexpr unsigned int wrongCount = 1; // wrong number of arguments
constexpr unsigned int badOption = 2;  // an option that the command does not know, or that another one excludes
} // namespace CommonExit
