#pragma once

#include "LanguageServer/Document.h"
#include "LanguageServer/Protocol.h"

#include <cstddef>
#include <string>

/// What a client said of itself.
struct ClientTraits
{
    PositionUnit unit = PositionUnit::Utf16;
    bool takesOffsets = false; // of the parameters of a call, instead of their names
};

/// What is asked of a script, in the client's terms: places are the protocol's, results are values of its requests.
class Features
{
public:
    Features(const ScriptAssistant& assistant, const ClientTraits& client, const std::string& uri, Document& document)
        : assistant(assistant), client(client), unit(client.unit), uri(uri), document(document)
    {}

    Json GetDiagnostics() const;
    Json Complete(const Json& position) const;
    Json Hover(const Json& position) const;
    Json DescribeCall(const Json& position) const;
    Json FindDefinition(const Json& position) const;
    Json GetOutline() const;
    /// What mends the findings in the range.
    Json GetQuickFixes(const Json& range) const;
    Json Format() const;
    Json FormatRange(const Json& range) const;

    /// Puts the text of a "contentChanges" item into the document.
    void Change(const Json& change) const;

private:
    const ScriptAssistant& assistant;
    const ClientTraits& client;
    const PositionUnit unit;
    const std::string& uri;
    Document& document;

    struct Asked; // a command and the place in it that is asked about

    Asked Find(const Json& position) const;
    Json MakePosition(const ScriptCommand::Place& place) const;
    Json MakeRange(const ScriptCommand::Place& start, const ScriptCommand::Place& end) const;
    Json MakeRange(const TextRange& range) const;
    Json MakeDiagnostic(const Finding& finding) const;
    Json MakeItem(const Completion::Candidate& candidate, const Json& range, std::wstring_view written) const;
    Json FormatLines(std::size_t first, std::size_t last) const;
    void AddEdits(const ScriptCommand& command, std::size_t first, std::size_t last, Json& edits) const;
};

/// The number of a place; throws ProtocolError for what is none.
std::size_t ReadCount(const Json& number);
