#include "LanguageServer/LanguageServer.h"

#include "LanguageServer/FileUri.h"
#include "Text/HostError.h"

#include <algorithm>
#include <exception>
#include <iterator>

static const Json::json_pointer encodings_lc("/capabilities/general/positionEncodings");
static const Json::json_pointer takesOffsets_lc("/capabilities/textDocument/signatureHelp/signatureInformation/"
                                                "parameterInformation/labelOffsetSupport");

/// A request about a document.
struct LanguageServer::Request
{
    const char* method;
    Json (*answer)(const Features& features, const Json& params);
};

/// What is no answer to a request, and gets none.
struct LanguageServer::Notification
{
    const char* method;
    void (LanguageServer::*handle)(const Json& params);
};

/// Whether the client has not asked for other kinds of actions alone. A kind includes those that begin with it.
static bool WantsQuickFixes(const Json& params)
{
    constexpr std::string_view quickFix = "quickfix";
    const Json only = params.value("context", Json::object()).value("only", Json());
    if (!only.is_array() || only.empty())
        return true;
    return std::any_of(only.begin(), only.end(),
        [&](const Json& kind) { return kind.is_string() && quickFix.starts_with(kind.get<std::string>()); });
}

const LanguageServer::Request LanguageServer::requests_lc[] = {
    {"textDocument/completion", [](auto& features, auto& params) { return features.Complete(params.at("position")); }},
    {"textDocument/hover", [](auto& features, auto& params) { return features.Hover(params.at("position")); }},
    {"textDocument/signatureHelp",
        [](auto& features, auto& params) { return features.DescribeCall(params.at("position")); }},
    {"textDocument/definition",
        [](auto& features, auto& params) { return features.FindDefinition(params.at("position")); }},
    {"textDocument/documentSymbol", [](auto& features, auto&) { return features.GetOutline(); }},
    {"textDocument/codeAction",
        [](auto& features, auto& params) {
            return WantsQuickFixes(params) ? features.GetQuickFixes(params.at("range")) : Json::array();
        }},
    {"textDocument/formatting", [](auto& features, auto&) { return features.Format(); }},
    {"textDocument/rangeFormatting",
        [](auto& features, auto& params) { return features.FormatRange(params.at("range")); }},
};

const LanguageServer::Notification LanguageServer::notifications_lc[] = {
    {"textDocument/didOpen", &LanguageServer::Open},
    {"textDocument/didChange", &LanguageServer::Change},
    {"textDocument/didSave", &LanguageServer::Save},
    {"textDocument/didClose", &LanguageServer::Close},
};

/// message: request | notification | the answer to a request, of which none was sent
void LanguageServer::Handle(const Json& message)
{
    static const Json none = Json::object();
    const auto get = [&](const char* name) {
        return message.is_object() && message.contains(name) ? message[name] : Json();
    };
    const Json id = get("id");
    const Json method = get("method");
    const bool hasId = id.is_number_integer() || id.is_string();
    if (!method.is_string()) {
        const bool isAnswer = hasId && (message.contains("result") || message.contains("error"));
        if (!isAnswer)
            send(MakeErrorResponse(hasId ? id : Json(), ProtocolFault::InvalidRequest, "no request"));
        return;
    }
    const Json params = get("params");
    if (hasId)
        HandleRequest(id, method, params.is_null() ? none : params);
    else if (message.contains("id"))
        send(MakeErrorResponse(nullptr, ProtocolFault::InvalidRequest, "the id is no number and no text"));
    else
        HandleNotification(method, params.is_null() ? none : params);
}

/// What is being handled as an exception, but for an abort, which goes on.
static std::string DescribeThrown()
try {
    throw;
} catch (const HostException& failure) {
    if (IsHostError(failure, HostError::Aborted))
        throw;
    return failure.GetMessage().ToUtf8();
} catch (const ExitCode& code) {
    return code.ToString().ToUtf8();
} catch (const std::exception& exception) {
    return exception.what();
}

void LanguageServer::HandleRequest(const Json& id, const std::string& method, const Json& params)
{
    Json response;
    try {
        response = MakeResponse(id, Answer(method, params));
    } catch (const ProtocolError& error) {
        response = MakeErrorResponse(id, error.fault, error.what());
    } catch (const Json::exception& error) {
        response = MakeErrorResponse(id, ProtocolFault::InvalidParams, error.what());
    } catch (...) {
        response = MakeErrorResponse(id, ProtocolFault::InternalError, DescribeThrown());
    }
    send(response);
}

Json LanguageServer::Answer(const std::string& method, const Json& params)
{
    if (state == State::New && method != "initialize")
        throw ProtocolError(ProtocolFault::ServerNotInitialized, "initialize comes first");
    if (state == State::ShutDown)
        throw ProtocolError(ProtocolFault::InvalidRequest, "the server is shut down");
    if (method == "initialize")
        return Initialize(params);
    if (method == "shutdown") {
        PublishDiagnostics();
        state = State::ShutDown;
        return nullptr;
    }
    const auto request = std::ranges::find_if(requests_lc, [&](const Request& each) { return each.method == method; });
    if (request == std::end(requests_lc))
        throw ProtocolError(ProtocolFault::MethodNotFound, "unknown method: " + method);
    return request->answer(GetFeatures(params), params);
}

Json LanguageServer::Initialize(const Json& params)
{
    if (state != State::New)
        throw ProtocolError(ProtocolFault::InvalidRequest, "initialize came before");
    const Json offered = params.value(encodings_lc, Json::array());
    const bool isOffered = offered.is_array() && std::ranges::find(offered, Json("utf-32")) != offered.end();
    client.unit = isOffered ? PositionUnit::Character : PositionUnit::Utf16;
    client.takesOffsets = params.value(takesOffsets_lc, Json()) == Json(true);
    state = State::Running;
    constexpr int incremental = 2;
    return {{"serverInfo", {{"name", "labsh"}}},
        {"capabilities",
            {{"positionEncoding", isOffered ? "utf-32" : "utf-16"},
                {"textDocumentSync", {{"openClose", true}, {"change", incremental}, {"save", true}}},
                {"completionProvider", {{"triggerCharacters", {"%", "{", "[", "-", " "}}}}, {"hoverProvider", true},
                {"signatureHelpProvider", {{"triggerCharacters", {"(", ","}}}}, {"definitionProvider", true},
                {"documentSymbolProvider", true}, {"codeActionProvider", {{"codeActionKinds", {"quickfix"}}}},
                {"documentFormattingProvider", true}, {"documentRangeFormattingProvider", true}}}};
}

/// One that cannot be understood changes nothing, but is told of.
void LanguageServer::HandleNotification(const std::string& method, const Json& params)
{
    if (method == "exit") {
        hasEnded = true;
        return;
    }
    const auto notification =
        std::ranges::find_if(notifications_lc, [&](const Notification& each) { return each.method == method; });
    if (state != State::Running || notification == std::end(notifications_lc))
        return;
    try {
        (this->*notification->handle)(params);
    } catch (...) {
        Log(DescribeThrown());
    }
}

void LanguageServer::Open(const Json& params)
{
    const Json& opened = params.at("textDocument");
    const std::string uri = opened.at("uri").get<std::string>();
    Document document(ReadFileUri(uri), opened.at("text").get<std::string>());
    documents.erase(uri);
    documents.emplace(uri, OpenDocument{std::move(document), opened.value("version", Json())});
    changed.insert(uri);
}

void LanguageServer::Change(const Json& params)
{
    const Json& identifier = params.at("textDocument");
    const std::string uri = identifier.at("uri").get<std::string>();
    OpenDocument& open = Find(uri);
    changed.insert(uri);
    open.version = identifier.value("version", Json());
    for (const Json& change : params.at("contentChanges"))
        Features(assistant, client, uri, open.document).Change(change);
}

/// What a script that was saved says may matter to the others too, which may run it.
void LanguageServer::Save(const Json&)
{
    for (auto& [uri, open] : documents) {
        open.document.ForgetAnalysis();
        changed.insert(uri);
    }
}

void LanguageServer::Close(const Json& params)
{
    const std::string uri = params.at("textDocument").at("uri").get<std::string>();
    if (documents.erase(uri) == 0)
        return;
    changed.erase(uri);
    Publish(uri, Json::array(), nullptr);
}

LanguageServer::OpenDocument& LanguageServer::Find(const std::string& uri)
{
    const auto found = documents.find(uri);
    if (found == documents.end())
        throw ProtocolError(ProtocolFault::InvalidParams, "not open: " + uri);
    return found->second;
}

Features LanguageServer::GetFeatures(const Json& params)
{
    const std::string& uri = params.at("textDocument").at("uri").get_ref<const std::string&>();
    return {assistant, client, uri, Find(uri).document};
}

void LanguageServer::PublishDiagnostics()
{
    for (const std::string& uri : changed) {
        OpenDocument& open = Find(uri);
        Json diagnostics = Json::array();
        try {
            diagnostics = Features(assistant, client, uri, open.document).GetDiagnostics();
        } catch (...) {
            Log(DescribeThrown());
        }
        Publish(uri, std::move(diagnostics), open.version);
    }
    changed.clear();
}

/// Tells the client what goes with no request.
void LanguageServer::Log(const std::string& message)
{
    constexpr int error = 1;
    send(MakeNotification("window/logMessage", {{"type", error}, {"message", message}}));
}

void LanguageServer::Publish(const std::string& uri, Json diagnostics, const Json& version)
{
    Json params = {{"uri", uri}, {"diagnostics", std::move(diagnostics)}};
    if (version.is_number_integer())
        params["version"] = version;
    send(MakeNotification("textDocument/publishDiagnostics", std::move(params)));
}
