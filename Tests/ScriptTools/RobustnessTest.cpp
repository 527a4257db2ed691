// Whatever it is given, an analysis ends soon, and each finding and symbol has a place within the script.

#include "ScriptTools/LoadedTools.h"
#include "Support/HostTexts.h"
#include "Support/TestFiles.h"

#include <gtest/gtest.h>

#include <ctime>
#include <random>

namespace {
namespace fs = std::filesystem;

class RobustnessTest : public testing::Test
{
protected:
    ScriptAnalysis Analyse(const std::string& script, const std::string& path = "")
    {
        ScriptAnalysis analysis = tools->Analyse(script, path, Environment());
        lengths.clear();
        for (std::size_t start = 0; start <= script.size(); start += line.size() + 1) {
            line = script.substr(start, script.find('\n', start) - start);
            lengths.push_back(WString::FromUtf8(line).Length());
        }
        const TextRange* former = nullptr;
        for (const Finding& finding : analysis.findings) {
            EXPECT_TRUE(Fits(finding.place, former)) << finding.message.ToUtf8() << " in\n" << script.substr(0, 1000);
            former = &finding.place;
        }
        former = nullptr;
        for (const ScriptSymbol& symbol : analysis.symbols) {
            EXPECT_TRUE(Fits(symbol.place, former)) << symbol.name.ToUtf8() << " in\n" << script.substr(0, 1000);
            former = &symbol.place;
        }
        return analysis;
    }

private:
    const LoadedTools tools;
    std::string line;
    std::vector<std::size_t> lengths; // of the lines, in characters

    /// Within a line, not before the former place.
    bool Fits(const TextRange& place, const TextRange* former) const
    {
        const bool isOrdered =
            !former || former->line < place.line || (former->line == place.line && former->start <= place.start);
        return isOrdered && place.line < lengths.size() && place.start <= place.end && place.end <= lengths[place.line];
    }
};
} // namespace

TEST_F(RobustnessTest, ReadsAnyBytes)
{
    constexpr unsigned int seed = 1;
    std::mt19937 random(seed);
    const std::string pieces[] = {"If ", " Then ", " Else ", "While ", " Do ", "Calc ", "Set ", "a", "=", "(", ")",
        "\"", "\\", "\n", ";", ",", "%S{", "}", "1", "-", " ", "IF(", "AssertFail * ", "Run ", "#", "-l", "\xC3\xA4",
        "\xFF", "\r\n", "\t"};
    for (unsigned int script = 0; script < 500; ++script) {
        std::string text;
        for (std::size_t count = random() % 60; count > 0; --count)
            text +=
                script % 5 == 0 ? std::string(1, static_cast<char>(random())) : pieces[random() % std::size(pieces)];
        Analyse(text);
    }
}

TEST_F(RobustnessTest, ReadsHalfTypedScripts)
{
    for (const char* folder : {"Scripts", "../Examples/Scripts", "Sessions", "Expressions"}) {
        for (const fs::path& file : ListTestFiles(folder)) {
            const std::string whole = fs::is_regular_file(file) ? TemporaryFolder::ReadFile(file) : "";
            for (std::size_t size = 0; size < std::min<std::size_t>(whole.size(), 8000); size += 97)
                Analyse(whole.substr(0, size), file);
        }
    }
}

TEST_F(RobustnessTest, EndsSoonWithHostileScripts)
{
    const TemporaryFolder folder;
    constexpr int chainLength = 100; // each runs the next one twice
    for (int index = 0; index < chainLength; ++index) {
        const std::string next = "Run chain" + std::to_string(index + 1) + ".txt\n";
        folder.Write("chain" + std::to_string(index) + ".txt", next + next);
    }
    folder.Write("circle.txt", "Run script.txt\n");
    const std::string mega(0x100000, 'a');
    const struct
    {
        const char* name;
        std::string script;
    } cases[] = {
        {"parentheses", "Calc " + Repeat("(", 10'000) + "1" + Repeat(")", 10'000)},
        {"open parentheses", "Calc " + Repeat("(", 1'000'000)},
        {"calls", "Calc " + Repeat("Max(1,", 10'000)},
        {"calls that test", "Calc " + Repeat("IsErr(1+", 190) + "1" + Repeat(")", 190)},
        {"choices", "Calc " + Repeat("IF(a,1,", 190) + "1" + Repeat(")", 190)},
        {"signs", "Calc " + Repeat("-", 1'000'000)},
        {"operators", "Calc 1" + Repeat("+a", 100'000)},
        {"powers", "Calc 1" + Repeat("^2", 100'000)},
        {"quotes", "Calc " + Repeat("\"", 1'000'000)},
        {"references", "Echo " + Repeat("%S{", 300'000)},
        {"known references", "Echo " + Repeat("%E{a}", 20'000)},
        {"unknown functions", "Calc 1" + Repeat("+abs2(1)", 20'000)},
        {"nested conditions", Repeat("If a Then ", 20'000) + "Wait 0"},
        {"nested choices", Repeat("If a Then Wait 0 Else ", 10'000) + "Wait 0"},
        {"nested loops", Repeat("While a Do ", 20'000) + "Wait 0"},
        {"nested expectations", Repeat("AssertFail * ", 20'000) + "Wait 0"},
        {"a list", "If a Then " + Repeat("Wait 0;", 100'000)},
        {"separators", "If a Then " + Repeat(";", 1'000'000)},
        {"options", "Calc " + Repeat("-q ", 100'000) + "1"},
        {"a long line", "Calc " + mega},
        {"a line too long", "Calc " + mega + mega},
        {"a long name", mega},
        {"continued lines", Repeat("Set a=1\\\n", 100'000)},
        {"many lines", Repeat("If total>1 Then Set total=total+1 Else Echo %E{total}\nSet x=1+*2\n", 50'000)},
        {"many variables",
            [] {
                std::string text;
                for (int index = 0; index < 30'000; ++index)
                    text += "Set v" + std::to_string(index) + "=w" + std::to_string(index) + "\n";
                return text;
            }()},
        {"itself", Repeat("Run script.txt\n", 100)},
        {"a circle", Repeat("Run circle.txt\n", 100)},
        {"a chain", "Run chain0.txt\n"},
        {"a folder", "Run .\nRun /\n"},
        {"a device", "Run /dev/zero\n"},
    };
    for (const auto& [name, script] : cases) {
        const std::clock_t begin = std::clock();
        Analyse(script, folder.Write("script.txt", script));
        EXPECT_LT(static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC, 20) << name; // of the processor
    }
}
