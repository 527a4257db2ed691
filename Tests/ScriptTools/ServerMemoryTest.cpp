// The memory of the language server while somebody types for hours.

#include "LanguageServer/LanguageServer.h"
#include "ScriptTools/LoadedTools.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

#include <malloc.h>
#include <random>

namespace {
const std::string uri = "file:///script";

/// An editor in which keys are hit at random, and which asks about the places where they are.
class Typist
{
public:
    Typist()
    {
        Send("initialize", {{"capabilities", Json::object()}});
        Tell("textDocument/didOpen", {{"textDocument", {{"uri", uri}, {"version", 0}, {"text", script}}}});
    }

    void Type(int count)
    {
        const char* const requests[] = {"completion", "hover", "signatureHelp", "definition", "documentSymbol"};
        while (count-- > 0) {
            if (++version % 100 == 0)
                Change({{"text", script}});
            Change(MakeEdit());
            server.PublishDiagnostics();
            Json params = GetDocument();
            params["position"] = GetPlace();
            Send(std::string("textDocument/") + requests[random() % std::size(requests)], params);
        }
    }

    int faults = 0; // of the server

private:
    const std::string script = TemporaryFolder::ReadFile(SOURCE_DIR "/Examples/Scripts/LimitTable.txt");
    int version = 0;
    int id = 0;
    std::mt19937 random{3};
    const LoadedTools tools;
    LanguageServer server{
        *ScriptAssistant::GetOrNull(), [this](const Json& message) { faults += message.contains("error"); }};

    static Json GetDocument() { return {{"textDocument", {{"uri", uri}}}}; }
    void Send(const std::string& method, const Json& params)
    {
        server.Handle({{"id", ++id}, {"method", method}, {"params", params}});
    }
    void Tell(const std::string& method, const Json& params)
    {
        server.Handle({{"method", method}, {"params", params}});
    }
    void Change(const Json& change)
    {
        Json params = GetDocument();
        params["textDocument"]["version"] = version;
        params["contentChanges"] = {change};
        Tell("textDocument/didChange", params);
    }
    Json GetPlace() { return {{"line", random() % 20}, {"character", random() % 60}}; }
    Json MakeEdit()
    {
        const char* const typed[] = {
            "", "", "Calc ", "%S{", "(", ")", "\"", ";", "\n", "\\\n", "x", "\xF0\x9F\x98\x80", "# ", "If 1=1 Then "};
        const Json start = GetPlace();
        Json end = start;
        end["character"] = end["character"].get<unsigned int>() + random() % 4;
        return {{"range", {{"start", start}, {"end", end}}}, {"text", typed[random() % std::size(typed)]}};
    }
};
} // namespace

TEST(ServerMemoryTest, StaysAsItIsWhileSomebodyTypes)
{
    Typist typist;
    typist.Type(500);
    const std::size_t before = mallinfo2().uordblks;
    typist.Type(2'500);
    EXPECT_LT(mallinfo2().uordblks, before + 50'000);
    EXPECT_EQ(typist.faults, 0);
}
