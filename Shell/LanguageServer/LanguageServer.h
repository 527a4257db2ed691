#pragma once

#include "LanguageServer/Features.h"

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>

/// A language server (LSP 3.17) for scripts of the shell: answers messages, one at a time.
class LanguageServer
{
public:
    /// Sends a message to the client.
    using Send = std::function<void(const Json& message)>;

    LanguageServer(const ScriptAssistant& assistant, Send send) : assistant(assistant), send(std::move(send)) {}

    /// Does what the message asks for, and answers it if it is a request. Never throws for what a message holds.
    void Handle(const Json& message);
    /// Sends the findings of the documents that changed since the last time.
    void PublishDiagnostics();

    bool HasEnded() const { return hasEnded; }
    /// Whether the client asked for the end in the order that the protocol wants.
    bool HasEndedInOrder() const { return hasEnded && state == State::ShutDown; }

private:
    enum class State
    {
        New,
        Running,
        ShutDown
    };
    struct Request;
    struct Notification;
    struct OpenDocument
    {
        Document document;
        Json version;
    };

    static const Request requests_lc[];
    static const Notification notifications_lc[];

    const ScriptAssistant& assistant;
    const Send send;
    State state = State::New;
    bool hasEnded = false;
    ClientTraits client;
    std::map<std::string, OpenDocument> documents;
    std::set<std::string> changed;

    void HandleRequest(const Json& id, const std::string& method, const Json& params);
    Json Answer(const std::string& method, const Json& params);
    void HandleNotification(const std::string& method, const Json& params);
    Json Initialize(const Json& params);
    void Open(const Json& params);
    void Change(const Json& params);
    void Save(const Json& params);
    void Close(const Json& params);

    OpenDocument& Find(const std::string& uri);
    Features GetFeatures(const Json& params);
    void Log(const std::string& message);
    void Publish(const std::string& uri, Json diagnostics, const Json& version);
};
