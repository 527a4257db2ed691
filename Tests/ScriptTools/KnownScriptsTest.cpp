// Analyses every script, session and expression of the tests, the examples and the documents, each as a script in a
// folder with those beside it. One that runs clean must have no findings, and errors must be errors in all of them.

#include "ScriptTools/LoadedTools.h"
#include "ScriptTools/ScriptRun.h"
#include "Support/ManualClock.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <regex>

namespace {
namespace fs = std::filesystem;

/// Runs and analyses scripts, in a working folder of their own.
class KnownScriptsTest : public testing::Test
{
protected:
    KnownScriptsTest() { fs::current_path(folder.GetPath()); }
    ~KnownScriptsTest() override { fs::current_path(formerFolder); }

    /// With a new bench and no variables.
    void Begin()
    {
        tools.emplace();
        variables = Environment();
    }
    void Check(const std::string& name, const std::string& script, bool mayWarn = false);

    const fs::path formerFolder = fs::current_path();
    const ManualClock clock;
    const TemporaryFolder folder;
    Environment variables; // that scripts begin with
    unsigned int cleanCount = 0;

private:
    std::optional<LoadedTools> tools;
};

void KnownScriptsTest::Check(const std::string& name, const std::string& script, bool mayWarn)
{
    Environment own;
    WStringArray names;
    variables.GetKeys(names);
    for (const WString& each : names)
        own.SetString(each, variables.GetString(each, 1));
    const std::string path = folder.Write(name, script);
    const std::vector<Finding> findings = (*tools)->Analyse(script, path, own).findings;
    const ScriptRun run = RunWhole(path, own);
    const std::vector<LoneCommand> commands = ReadCommands(script);
    cleanCount += run.isClean;
    for (const Finding& finding : findings) {
        const LoneCommand* const command = FindCommand(commands, finding);
        ASSERT_TRUE(command) << name << ": " << Describe(finding);
        EXPECT_FALSE(run.isClean && !mayWarn) << name << ": " << Describe(finding) << "\n" << command->text.ToUtf8();
        EXPECT_EQ(FindObjection(finding, *command, run, WString::FromUtf8(path), own), "")
            << name << ": " << Describe(finding) << "\n"
            << command->text.ToUtf8();
    }
}

/// What stands behind `prompt`, a script for each part of the file; `border` begins a line between two parts.
std::vector<std::string> ReadSessions(const fs::path& file, const std::string& prompt, const std::string& border)
{
    std::vector<std::string> sessions(1);
    for (const std::string& line : ReadTestLines(file)) {
        if (line.starts_with(border))
            sessions.emplace_back();
        else if (line.starts_with(prompt))
            sessions.back() += line.substr(prompt.size()) + "\n";
    }
    return sessions;
}
} // namespace

TEST_F(KnownScriptsTest, Scripts)
{
    for (const std::string part : {"Tests/Scripts", "Examples/Scripts"}) {
        const fs::path source = fs::path(SOURCE_DIR) / part;
        fs::copy(source, folder.GetPath(), fs::copy_options::recursive | fs::copy_options::overwrite_existing);
        for (const fs::path& script : ListTestFiles("../" + part)) {
            Begin();
            if (script.extension() == ".txt")
                Check(script.filename(), TemporaryFolder::ReadFile(script));
        }
    }
    EXPECT_GT(cleanCount, 10u);
}

/// With commands of the shell in place of those that only the sessions have. Two conditions there that never change
/// show what quotes do, which a check should point out.
TEST_F(KnownScriptsTest, Sessions)
{
    const std::pair<std::regex, const char*> replacements[] = {
        {std::regex("\\b(Say|Flags)\\b", std::regex::icase), "Echo"},
        {std::regex("\\bFail [0-9]", std::regex::icase), "AssertFail 1"},
        {std::regex("(IF \"%S\\{VersionProductName|If \"then\")"), "# check: off\n$1"},
    };
    for (const fs::path& file : ListTestFiles("Sessions")) {
        Begin();
        for (std::string session : ReadSessions(file, "> ", "//")) {
            for (const auto& [pattern, replacement] : replacements)
                session = std::regex_replace(session, pattern, replacement);
            Check(file.filename(), session);
        }
    }
    EXPECT_GT(cleanCount, 10u);
}

TEST_F(KnownScriptsTest, Documents)
{
    const std::string fence = "```";
    const std::string language = fence + "labsh ";
    const std::regex variable("([a-z]+)=\"?([^\" ]*)");
    const std::regex quoted("labsh '(.*?)'");
    for (const fs::path& page : ListTestFiles("../Docs")) {
        std::map<std::string, std::string> scripts;
        std::string* open = nullptr;
        Begin();
        for (const std::string& line : ReadTestLines(page)) {
            std::smatch match;
            if (line.starts_with(fence))
                open = line.starts_with(language) ? &scripts[line.substr(language.size())] : nullptr;
            else if (open)
                *open += line + "\n";
            else if (std::regex_search(line, match, quoted))
                Check("line", match.str(1));
            else if (line.starts_with("$ labsh ") && line.find(" -f ") != std::string::npos)
                for (std::sregex_iterator at(line.begin(), line.end(), variable), end; at != end; ++at)
                    variables.SetString(WString::FromUtf8(at->str(1)), WString::FromUtf8(at->str(2)));
        }
        for (const auto& [name, script] : scripts)
            folder.Write(name, script);
        for (const auto& [name, script] : scripts)
            Check(name, script);
        for (const std::string& session : ReadSessions(page, "> ", fence))
            Check(page.filename(), session);
        for (const std::string& session : ReadSessions(page, "labsh> ", fence)) // which show notes
            Check(page.filename(), session, true);
    }
    EXPECT_GT(cleanCount, 10u);
}

/// Many are there for what a warning is about.
TEST_F(KnownScriptsTest, Expressions)
{
    for (const fs::path& file : ListTestFiles("Expressions")) {
        Begin();
        std::string script;
        for (const std::string& line : ReadTestLines(file)) {
            const std::size_t arrow = line.find(" => ");
            if (arrow != std::string::npos && !line.starts_with("//"))
                script += "Calc -q -- " + line.substr(0, arrow) + "\n";
        }
        Check(file.filename(), script, true);
    }
}
