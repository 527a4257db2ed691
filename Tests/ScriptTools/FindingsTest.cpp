// What Check finds in scripts. Findings.txt has scripts, of lines behind "| ", and below each what is written, without
// the name of the file and the summary. The variable n is set before. Beside each stand part.txt, which sets fromPart,
// and self.txt, which runs itself.

#include "BuiltIns/BuiltIns.h"
#include "Commands/CommandRunner.h"
#include "Commands/EmbeddedResource.h"
#include "Commands/PluginLoader.h"
#include "Instrument/System.h"
#include "Support/TemporaryFolder.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

namespace {
struct Case
{
    std::string script{};
    std::string output{};
};

std::vector<Case> ReadCases()
{
    std::vector<Case> cases;
    bool isWithinScript = false;
    for (const std::string& line : ReadTestLines("ScriptTools/Findings.txt")) {
        const bool isScript = line.starts_with("|");
        if (isScript && !isWithinScript)
            cases.emplace_back();
        if (isScript)
            cases.back().script += line.substr(std::min<std::size_t>(line.size(), 2)) + "\n";
        else if (!line.empty() && !line.starts_with("#"))
            cases.back().output += line + "\n";
        isWithinScript = isScript;
    }
    return cases;
}

/// An entry of the texts that explain findings.
struct ExplainedFinding
{
    std::string code;
    std::string example{};
    std::string better{};
};

std::vector<ExplainedFinding> ReadExplanations()
{
    std::vector<ExplainedFinding> explanations;
    bool isBetter = false;
    for (EmbeddedResource text(std::string(SCRIPT_TOOLS_FILE), L"FINDINGS.TXT"); !text.EndOfFile();) {
        const std::string line = text.ReadLine().ToUtf8();
        if (!line.starts_with(" "))
            explanations.push_back({line.substr(0, line.find(' '))});
        isBetter = line == "  Better:" || (isBetter && line.starts_with("    "));
        if (line.starts_with("    "))
            (isBetter ? explanations.back().better : explanations.back().example) += line.substr(4) + "\n";
    }
    return explanations;
}

class FindingsTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        static const TemporaryFolder data;
        if (CommandRegistry::FindOrNull(L"Check"))
            return;
        System::Start(data.GetPath(), SOURCE_DIR "/Shell/Profile");
        AddBuiltIns();
        PluginLoader::Load(PLUGIN_FILE);
        PluginLoader::Load(SCRIPT_TOOLS_FILE);
    }

    FindingsTest()
    {
        folder.Write("part.txt", "Set fromPart=1\n");
        folder.Write("self.txt", "Run self.txt\n");
    }

    /// What is found, without the name of the file. The exit code and the summary must agree with it.
    std::string Check(const std::string& script, const std::string& words = "")
    {
        folder.Write("script.txt", script);
        const std::string path = folder.Path("script.txt");
        ArrayPipe pipe;
        const CommandRunner::Outcome outcome =
            CommandRunner::Run(WString::FromUtf8("Check " + words + path), pipe, Environment(), 0);
        std::string output;
        for (const WString& line : pipe.lines)
            output += line.ToUtf8() + "\n";
        for (std::size_t at = 0; (at = output.find(path + ":")) != output.npos;)
            output.erase(at, path.size() + 1);
        const bool hasErrors = output.find(": error: ") != output.npos;
        const bool hasWarnings = output.find(": warning: ") != output.npos;
        EXPECT_EQ(outcome.code.GetNumber(), hasErrors ? 11u : hasWarnings ? 10u : 0u) << output;
        const std::string last = pipe.lines[pipe.lines.Count() - 1].ToUtf8();
        EXPECT_EQ(last == "0 errors, 0 warnings in 1 script", !hasErrors && !hasWarnings) << output;
        return output.substr(0, output.size() - last.size() - 1);
    }

    const TemporaryFolder folder;
};
} // namespace

TEST_F(FindingsTest, AreThoseOfTheTable)
{
    for (const auto& [script, output] : ReadCases())
        EXPECT_EQ(Check(script, "n=1 "), output) << script;
}

TEST_F(FindingsTest, AreExplainedByExamples)
{
    const std::vector<ExplainedFinding> explanations = ReadExplanations();
    EXPECT_GT(explanations.size(), 20u);
    for (const auto& [code, example, better] : explanations) {
        const bool isFound = Check(example).find("[" + code + "]") != std::string::npos;
        EXPECT_EQ(isFound, !example.empty()) << code;
        EXPECT_EQ(Check(better).find("[" + code + "]"), std::string::npos) << code;
    }
}

TEST_F(FindingsTest, KnowVariablesThatAreGiven)
{
    EXPECT_NE(Check("Echo %E{unit}\n"), "");
    EXPECT_EQ(Check("Echo %E{unit}\n", "unit=A "), "");
}
