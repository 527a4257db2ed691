#include "Text/HostError.h"

struct HostMessage
{
    HostError error;
    const wchar_t* text;
};

static constexpr HostMessage messages_lc[] = {
    {HostError::UnexpectedException, L"Unexpected exception"},
    {HostError::UnknownCommand, L"Unknown command"},
    {HostError::NestedTooDeeply, L"Commands are nested too deeply"},
    {HostError::Aborted, L"Aborted"},
    {HostError::UnknownReference, L"Unknown reference"},
    {HostError::UnterminatedQuote, L"Missing closing quote"},
    {HostError::CommandTooLong, L"Command is too long"},
    {HostError::WrongArguments, L"Wrong arguments"},
    {HostError::UnknownOption, L"Unknown option"},
    {HostError::FileError, L"File error"},
    {HostError::ExitRequested, L"Told to exit"},
    {HostError::TextTooLong, L"The text is too long"},
    {HostError::OutOfMemory, outOfMemoryMessage},
    {HostError::EmptyContainer, L"Container is empty"},
};

const wchar_t* GetHostMessage(const ExitCode& code) noexcept
{
    if (code.GetModule() != ExitCode::hostModule)
        return L"";
    for (const HostMessage& message : messages_lc) {
        if (static_cast<unsigned int>(message.error) == code.GetNumber())
            return message.text;
    }
    return L"";
}

HostException::HostException(HostError error, const WString& details)
    : ExitCode(0, hostModule, static_cast<unsigned int>(error)), message(GetHostMessage(*this))
{
    if (!details.IsEmpty())
        message.AppendWithSeparator(details, L": ");
}
