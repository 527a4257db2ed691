#include "LanguageServer/Run.h"

#include "Commands/StandardStream.h"
#include "LanguageServer/Inbox.h"
#include "LanguageServer/LanguageServer.h"
#include "Text/HostError.h"

#include <system_error>
#include <unistd.h>

static void Send(StandardStream& output, const Json& message)
{
    constexpr int noIndent = -1;
    const std::string body = message.dump(noIndent, ' ', false, Json::error_handler_t::replace);
    const int fault = output.Write(Frame(body));
    if (fault != 0)
        throw HostException(HostError::FileError,
            WString::FromUtf8("standard output cannot be written: " + std::generic_category().message(fault)));
}

static bool IsCancelled(const Inbox& inbox, const Json& message)
{
    return message.is_object() && message.contains("id") && message.value("method", Json()) != "initialize" &&
        message.value("method", Json()) != "shutdown" && inbox.IsCancelled(message["id"]);
}

bool RunLanguageServer()
{
    const ScriptAssistant* const assistant = ScriptAssistant::GetOrNull();
    if (!assistant)
        throw HostException(HostError::FileError, L"ScriptTools.dll beside labsh is missing, or cannot be loaded");
    StandardStream output(STDOUT_FILENO);
    const auto send = [&](const Json& message) { Send(output, message); };
    Inbox inbox(STDIN_FILENO);
    LanguageServer server(*assistant, send);
    while (!server.HasEnded()) {
        const std::optional<Inbox::Incoming> incoming = inbox.Take();
        if (!incoming)
            return false;
        if (!incoming->fault.empty())
            send(MakeErrorResponse(nullptr, ProtocolFault::ParseError, incoming->fault));
        else if (IsCancelled(inbox, incoming->message))
            send(MakeErrorResponse(incoming->message["id"], ProtocolFault::RequestCancelled, "cancelled"));
        else
            server.Handle(incoming->message);
        if (!inbox.IsNext("textDocument/didChange")) // of a burst of changes the last one counts
            server.PublishDiagnostics();
    }
    return server.HasEndedInOrder();
}
