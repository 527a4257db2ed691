#pragma once

#include "HostApi.h"
#include "Text/WString.h"

#include <cstdint>

/// How a command ended: the command's id, the module that reports, and a number that is 0 for success. The text form
/// joins the three with colons ("1043:505:133"). Thrown by value to end a command with that code.
class HOST_API ExitCode
{
public:
    static constexpr std::uint16_t hostModule = 1;

    ExitCode() = default;
    explicit ExitCode(unsigned int number) : number(number) {}
    ExitCode(unsigned short commandId, unsigned short module, unsigned int number)
        : commandId(commandId), module(module), number(number)
    {}

    unsigned short GetCommandId() const noexcept { return commandId; }
    void SetCommandId(unsigned short id) noexcept { commandId = id; }
    unsigned short GetModule() const noexcept { return module; }
    unsigned int GetNumber() const noexcept { return number; }
    bool IsError() const noexcept { return number != 0; }
    bool operator==(const ExitCode&) const = default;

    WString ToString() const;
    /// The text in one of a few slots of this thread, valid until eight further calls.
    const wchar_t* ToCString() const;
    /// Reads the text form, three decimal numbers within the ranges of the fields and nothing else.
    static bool TryParse(const WString& text, ExitCode& code);

private:
    std::uint16_t commandId = 0;
    std::uint16_t module = 0;
    std::uint32_t number = 0;
};
