// The language server: as a process that answers the messages of LanguageServer.txt and outlives noise, and its answers
// about a script of which the findings and symbols are known.

#include "LanguageServer/LanguageServer.h"
#include "LanguageServer/Inbox.h"
#include "Shell/Labsh.h"
#include "Support/TestFiles.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

namespace {
/// The messages that the bytes consist of, which come in pieces of that size.
std::vector<std::string> Unpack(const std::string& bytes, std::size_t size)
{
    std::vector<std::string> bodies;
    Framing framing;
    for (std::size_t start = 0; start < bytes.size(); start += size) {
        framing.Append(bytes.data() + start, std::min(size, bytes.size() - start));
        std::string body;
        for (auto outcome = framing.Take(body); outcome != Framing::Outcome::Nothing; outcome = framing.Take(body))
            bodies.push_back(outcome == Framing::Outcome::Message ? body : "fault");
    }
    return bodies;
}

/// Replaces \r, \n and \xFF by the bytes they stand for.
std::string ReadBytes(const std::string& text)
{
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char kind = text[at] == '\\' ? text[++at] : '\0';
        if (kind == 'x')
            bytes += static_cast<char>(std::stoi(text.substr(std::exchange(at, at + 2) + 1, 2), nullptr, 16));
        else
            bytes += kind == 'r' ? '\r' : kind == 'n' ? '\n' : text[at];
    }
    return bytes;
}

/// The value with "..." where that is expected and there is something, and with "?" where it does not matter.
Json LeaveOut(Json value, const Json& expected)
{
    if (expected == "?" || (expected == "..." && !value.empty()))
        return expected;
    for (const auto& [name, part] : expected.items())
        if (expected.is_object() && value.is_object() && value.contains(name))
            value[name] = LeaveOut(value[name], part);
    return value;
}

/// What the server sends, without what is expected to be "..." or "?", and without the version of the protocol.
std::vector<std::string> Describe(const std::vector<std::string>& bodies, const std::vector<Json>& expected)
{
    std::vector<std::string> described;
    for (const std::string& body : bodies) {
        Json message = Json::parse(body);
        EXPECT_EQ(message["jsonrpc"], "2.0");
        message.erase("jsonrpc");
        const Json wanted = described.size() < expected.size() ? expected[described.size()] : Json();
        described.push_back(LeaveOut(std::move(message), wanted).dump());
    }
    return described;
}
} // namespace

TEST(LanguageServerTest, AnswersAsTheTranscriptSays)
{
    std::string input;
    std::vector<Json> expected;
    for (const std::string& line : ReadTestLines("Shell/LanguageServer.txt")) {
        const std::string text = line.substr(std::min<std::size_t>(3, line.size()));
        if (line.starts_with("-> "))
            input += Frame(text);
        else if (line.starts_with("=> "))
            input += ReadBytes(text);
        else if (line.starts_with("<- "))
            expected.push_back(Json::parse(text));
    }
    std::vector<std::string> texts(expected.size());
    std::ranges::transform(expected, texts.begin(), [](const Json& message) { return message.dump(); });
    Labsh labsh({"--lsp"}, input);
    EXPECT_EQ(labsh.Wait(), 0);
    EXPECT_THAT(Describe(Unpack(labsh.GetOutput(), std::string::npos), expected), testing::ElementsAreArray(texts));
    EXPECT_EQ(labsh.GetErrors(), "");
}

TEST(LanguageServerTest, TakesMessagesWhereverTheirBytesAreCut)
{
    const std::string bytes = Frame("{\"a\":1}") + "noise\r\n\r\nmore" + Frame("") + "\r\n" +
        Frame("Content-Length: 3") + "Content-Length: 99999999999999999999\r\n\r\n" +
        "Content-Length:                 \r\n\r\n" + Frame("[]");
    const std::vector<std::string> whole = {"{\"a\":1}", "fault", "", "Content-Length: 3", "fault", "fault", "[]"};
    for (std::size_t size = 1; size <= bytes.size(); ++size)
        EXPECT_EQ(Unpack(bytes, size), whole) << size;
    EXPECT_EQ(
        Inbox::Parse(std::string(200'000, '[') + std::string(200'000, ']')).fault, "the message is nested too deeply");
    const std::string tooLong(Framing::maxBodySize + 1, ' ');
    EXPECT_EQ(Unpack(Frame(tooLong) + Frame("[]"), 0x10000), (std::vector<std::string>{"fault", "[]"}));
    std::string fields;
    for (int line = 0; line < 10'000; ++line)
        fields += "X: y\r\n";
    EXPECT_EQ(Unpack(fields + Frame("[]"), 1000), (std::vector<std::string>{"fault", "[]"}));
    EXPECT_EQ(Unpack(std::string(100'000, 'x') + Frame("[]"), 1000), (std::vector<std::string>{"fault", "[]"}));
}

namespace {
/// Makes messages out of those of the transcript by putting parts of one in the place of parts of another.
class NoiseMaker
{
public:
    NoiseMaker()
    {
        for (const std::string& line : ReadTestLines("Shell/LanguageServer.txt")) {
            const std::string body = line.substr(std::min<std::size_t>(3, line.size()));
            const Json message = Json::parse(body, nullptr, false);
            const bool isEnd = body.find("\"exit\"") != body.npos || body.find("\"shutdown\"") != body.npos;
            if (line.starts_with("-> ") && message.is_object() && !isEnd)
                messages.push_back(message);
        }
        for (const Json& message : messages)
            Gather(message);
    }

    std::string Make()
    {
        Json message = messages[Pick(messages.size())];
        while (Pick(3) != 0)
            Spoil(message);
        std::string body = message.dump();
        switch (Pick(12)) {
        case 0: return Frame(body.substr(0, Pick(body.size())));
        case 1: return body;
        case 2: return "Content-Length: " + std::to_string(Pick(3)) + "\r\n\r\n" + body;
        default: return Frame(body);
        }
    }

private:
    std::mt19937 random{5};
    std::vector<Json> messages;
    std::vector<Json> values{nullptr, -1, 1e300, 18446744073709551615u, "", Json::array(), Json::object()};

    std::size_t Pick(std::size_t count) { return random() % count; }
    void Gather(const Json& value)
    {
        if (!value.is_structured())
            values.push_back(value);
        for (const Json& part : value)
            if (value.is_structured())
                Gather(part);
    }
    void Spoil(Json& message)
    {
        Json* part = &message;
        while (part->is_structured() && !part->empty() && Pick(6) != 0) {
            auto child = part->begin();
            std::advance(child, static_cast<std::ptrdiff_t>(Pick(part->size())));
            part = &*child;
        }
        *part = values[Pick(values.size())];
    }
};
} // namespace

TEST(LanguageServerTest, OutlivesNoise)
{
    constexpr int count = 3000;
    NoiseMaker noise;
    std::string input;
    for (int index = 0; index < count; ++index)
        input += noise.Make();
    input += Frame(R"({"id":"start","method":"initialize","params":{}})") +
        Frame(R"({"id":"last","method":"shutdown"})") + Frame(R"({"method":"exit"})");
    Labsh labsh({"--lsp"}, input);
    EXPECT_EQ(labsh.Wait(), 0);
    EXPECT_EQ(labsh.GetErrors(), "");
    const std::vector<std::string> bodies = Unpack(labsh.GetOutput(), std::string::npos);
    EXPECT_GT(bodies.size(), count / 4u);
    EXPECT_EQ(bodies.back(), R"({"id":"last","jsonrpc":"2.0","result":null})");
}

TEST(LanguageServerTest, FailsWithoutAnEndInOrder)
{
    EXPECT_EQ(Labsh({"--lsp"}).Finish(), "exit 1");
    EXPECT_EQ(Labsh({"--lsp"}, Frame(R"({"method":"exit"})")).Finish(), "exit 1");
}

namespace {
/// Knows one script.
class KnownScript : public ScriptAssistant
{
public:
    ScriptAnalysis Analyse(std::string_view, const std::string& path, const Environment&) const override
    {
        EXPECT_EQ(path, "/lab/a b.txt");
        ScriptAnalysis analysis;
        analysis.findings.push_back({true, L"S001", {0, 9, 13}, L"Unknown command: Cacl", L"Calc"});
        analysis.findings.push_back({false, L"S020", {1, 99, 99}, L"Beyond the line", L""});
        analysis.symbols.push_back({ScriptSymbol::Kind::Variable, L"x", L"1", {1, 4, 5}});
        analysis.symbols.push_back({ScriptSymbol::Kind::Variable, L"X", L"2", {2, 4, 5}});
        analysis.symbols.push_back({ScriptSymbol::Kind::Script, part, L"", {3, 4, 12}});
        return analysis;
    }
    Completion Complete(std::wstring_view, std::size_t, const Environment& variables) const override
    {
        return {0, {{L"x", L"x", L"= " + variables.GetString(L"x", 1)}}};
    }
    Explanation Explain(std::wstring_view, std::size_t, const Environment&) const override { return {}; }
    CallForm DescribeCall(std::wstring_view, std::size_t) const override { return {}; }
    WString Format(const WString& line) const override { return line; }

    WString part = L"none.txt"; // the script that it runs
};

/// A client of a server of its own, which has opened the script.
class Client
{
public:
    explicit Client(const Json& encodings)
    {
        Ask("initialize", {{"capabilities", {{"general", {{"positionEncodings", encodings}}}}}});
        const std::string text = "Echo \"\xF0\x9F\x98\x80\"; Cacl\nSet x=1\nSet x=2\nRun none.txt\nCalc x\n";
        server.Handle({{"method", "textDocument/didOpen"},
            {"params", {{"textDocument", {{"uri", uri}, {"version", 1}, {"text", text}}}}}});
    }

    Json Ask(const std::string& method, Json params)
    {
        params["textDocument"]["uri"] = uri;
        server.Handle({{"id", 1}, {"method", method}, {"params", params}});
        EXPECT_FALSE(last.contains("error")) << last;
        return last.value("result", Json());
    }
    Json AskAt(const std::string& method, int line, int character)
    {
        return Ask(method, {{"position", {{"line", line}, {"character", character}}}});
    }
    void Save() { server.Handle({{"method", "textDocument/didSave"}, {"params", {{"textDocument", {{"uri", uri}}}}}}); }
    Json GetDiagnostics()
    {
        server.PublishDiagnostics();
        return last["params"]["diagnostics"];
    }

    const std::string uri = "file:///lab/a%20b.txt";
    KnownScript script;

private:
    Json last;
    LanguageServer server{script, [this](const Json& message) { last = message; }};
};

Json MakeRange(int line, int start, int end)
{
    return {{"start", {{"line", line}, {"character", start}}}, {"end", {{"line", line}, {"character", end}}}};
}
} // namespace

TEST(LanguageServerTest, CountsPlacesInTheUnitsOfTheClient)
{
    const Json first = {{"severity", 1}, {"code", "S001"}, {"source", "labsh"},
        {"message", "Unknown command: Cacl (did you mean Calc?)"}};
    const Json second = {{"severity", 2}, {"code", "S020"}, {"source", "labsh"}, {"message", "Beyond the line"}};
    for (const bool countsCharacters : {false, true}) {
        Client client(countsCharacters ? Json{"utf-8", "utf-32"} : Json{"utf-8"});
        const Json mistake = MakeRange(0, 10 - countsCharacters, 14 - countsCharacters);
        Json expected = {first, second};
        expected[0]["range"] = mistake;
        expected[1]["range"] = MakeRange(1, 6, 7);
        EXPECT_EQ(client.GetDiagnostics(), expected);

        const Json actions = client.Ask("textDocument/codeAction", {{"range", MakeRange(0, 0, 0)}});
        const Json edit = {{"range", mistake}, {"newText", "Calc"}};
        const Json action = {{"title", "Change to Calc"}, {"kind", "quickfix"}, {"diagnostics", {expected[0]}},
            {"edit", {{"changes", {{client.uri, {edit}}}}}}};
        EXPECT_EQ(actions, Json::array({action}));
        EXPECT_EQ(client.Ask("textDocument/codeAction", {{"range", MakeRange(1, 0, 0)}}), Json::array());
    }
}

TEST(LanguageServerTest, KnowsTheLinesThatSetVariables)
{
    Client client(nullptr);
    const auto place = [&](int line) { return Json{{"uri", client.uri}, {"range", MakeRange(line, 4, 5)}}; };
    EXPECT_EQ(client.AskAt("textDocument/definition", 4, 6), place(2));
    EXPECT_EQ(client.AskAt("textDocument/definition", 2, 4), place(2));
    EXPECT_EQ(client.AskAt("textDocument/definition", 1, 4), place(1));
    EXPECT_EQ(client.AskAt("textDocument/definition", 4, 2), Json());
    EXPECT_EQ(client.AskAt("textDocument/definition", 3, 6), Json());
    EXPECT_EQ(client.AskAt("textDocument/completion", 4, 6)["items"][0]["detail"], "= 2");
    EXPECT_EQ(client.AskAt("textDocument/completion", 2, 6)["items"][0]["detail"], "= 1");

    const Json outline = client.Ask("textDocument/documentSymbol", Json::object());
    ASSERT_EQ(outline.size(), 3u);
    const Json range = MakeRange(1, 4, 5);
    EXPECT_EQ(
        outline[0], (Json{{"name", "x"}, {"detail", "1"}, {"kind", 13}, {"range", range}, {"selectionRange", range}}));
    EXPECT_EQ(outline[2]["kind"], 1);
}

TEST(LanguageServerTest, LooksAgainAtWhatIsSaved)
{
    Client client(nullptr);
    const Json diagnostics = client.GetDiagnostics();
    EXPECT_EQ(client.AskAt("textDocument/definition", 3, 6), Json());
    const TemporaryFolder folder;
    client.script.part = WString::FromUtf8(folder.Write("50% \u00E4.txt", ""));
    client.Save();
    EXPECT_EQ(client.GetDiagnostics(), diagnostics);
    EXPECT_EQ(client.AskAt("textDocument/definition", 3, 6),
        (Json{{"uri", "file://" + folder.GetPath() + "/50%25%20%C3%A4.txt"}, {"range", MakeRange(0, 0, 0)}}));
}
