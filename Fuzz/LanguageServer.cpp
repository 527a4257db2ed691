// Gives the language server whatever the fuzzer thinks of: as the bytes of its standard input, and as a document that
// is asked about at a place.

#include "LanguageServer/LanguageServer.h"
#include "LanguageServer/Inbox.h"
#include "ScriptTools/LoadedTools.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {
void HandleBytes(LanguageServer& server, const std::string& bytes)
{
    Framing framing;
    framing.Append(bytes.data(), bytes.size());
    std::string body;
    for (auto outcome = framing.Take(body); outcome != Framing::Outcome::Nothing; outcome = framing.Take(body)) {
        const Inbox::Incoming incoming = Inbox::Parse(body);
        if (outcome == Framing::Outcome::Message && incoming.fault.empty())
            server.Handle(incoming.message);
        server.PublishDiagnostics();
    }
}

void AskAbout(LanguageServer& server, const std::string& text)
{
    const Json document = {{"uri", "file:///a.txt"}, {"version", 1}, {"text", text}};
    const std::size_t lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    const Json params = {{"textDocument", document},
        {"position", {{"line", lines / 2}, {"character", text.size() % 40}}}, {"options", Json::object()}};
    server.Handle({{"method", "textDocument/didOpen"}, {"params", params}});
    for (const char* method : {"completion", "hover", "signatureHelp", "definition", "documentSymbol", "formatting"})
        server.Handle({{"id", 2}, {"method", std::string("textDocument/") + method}, {"params", params}});
    server.PublishDiagnostics();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    static const LoadedTools tools;
    LanguageServer server(*ScriptAssistant::GetOrNull(),
        [](const Json& message) { message.dump(-1, ' ', false, Json::error_handler_t::replace); });
    server.Handle({{"id", 1}, {"method", "initialize"}, {"params", Json::object()}});
    HandleBytes(server, input);
    AskAbout(server, WString::FromUtf8(input).ToUtf8());
    return 0;
}
