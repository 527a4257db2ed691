#pragma once

#include "Text/ExitCode.h"

/// The host's own error numbers (module 1); their messages stand in one table in HostError.cpp.
enum class HostError : unsigned int
{
    UnexpectedException = 1,
    UnknownCommand = 2,
    NestedTooDeeply = 3,
    Aborted = 4,
    UnknownReference = 5,
    UnterminatedQuote = 6,
    CommandTooLong = 7,
    WrongArguments = 8,
    UnknownOption = 9,
    FileError = 10,
    ExitRequested = 11,
    TextTooLong = 12,
    OutOfMemory = 13,
    EmptyContainer = 22,
};

/// An exit code of the host with the details that its number cannot carry, such as the name of a file. Thrown by
/// value; caught as ExitCode where the details do not matter.
class HOST_API HostException : public ExitCode
{
public:
    /// `details` is put behind the message of the table, after a colon and a blank; it may be empty.
    explicit HostException(HostError error, const WString& details = WString());

    const WString& GetMessage() const noexcept { return message; }

private:
    WString message;
};

/// The message of the failure that tells of a shortage, for where there is no memory for texts: a WString holds it
/// inside.
inline constexpr wchar_t outOfMemoryMessage[] = L"Out of memory";
static_assert(sizeof outOfMemoryMessage / sizeof *outOfMemoryMessage <= WString::inlineCapacity + 1);

/// The message of a host error, or an empty text for codes of other modules and unknown numbers.
HOST_API const wchar_t* GetHostMessage(const ExitCode& code) noexcept;

/// True when the code, whatever command it came from, is that host error.
inline bool IsHostError(const ExitCode& code, HostError error) noexcept
{
    return code.GetModule() == ExitCode::hostModule && code.GetNumber() == static_cast<unsigned int>(error);
}
