// What the loaded plug-in proposes at the cursor, which is "|" in the line.

#include "Instrument/OS9EventManager.h"
#include "ScriptTools/LoadedTools.h"
#include "Support/OwnEventTable.h"

#include <gtest/gtest.h>

namespace {
class CompletionTest : public testing::Test
{
protected:
    CompletionTest()
    {
        System::usage.Set(L"Boxes", 7);
        OS9EventManager::TryCreate(L"Cell ready", 3);
        OS9EventManager::TryCreate(L"Clean", 0);
        environment.SetString(L"target", L"37");
        environment.SetString(L"tries", L"3");
    }

    Completion Complete(const std::string& line) const
    {
        const std::size_t cursor = line.find('|');
        const WString before = WString::FromUtf8(line.substr(0, cursor));
        const WString text = before + WString::FromUtf8(line.substr(cursor + 1));
        return tools->Complete(text.View(), before.Length(), environment);
    }

    const LoadedTools tools;
    Environment environment;
};
} // namespace

TEST_F(CompletionTest, ProposesWhatMayStandAtTheCursor)
{
    const struct
    {
        const char* line;
        const char* texts; // each in brackets
    } cases[] = {
        {"ca|", "[Calc ]"},
        {"  wai|", "[Wait ]"},
        {"If 1=1 |", "[THEN ]"},
        {"If 1=1 t|", "[THEN ]"},
        {"If 1=1 a|", "[AND ]"},
        {"If 1=1 Then Ca|", "[Calc ]"},
        {"If 1=1 Then Calc 1; Wai|", "[Wait ]"},
        {"If 1=1 Then Calc 1 e|", "[ELSE ]"},
        {"If 1=1 Then Echo a e|", "[ELSE ]"},
        {"If 1=1 Then Echo a Else Wai|", "[Wait ]"},
        {"If \"Then \" & t|", "[tan(][tanh(][target][Timer][ToHex(][ToString(][tries][true]"},
        {"If %S{TempO| Then Calc Ro", "[TempOptics}][TempOpticsStable}][TempOpticsTarget}]"},
        {"If 1=1 Then If 2=2 Then While tr|", "[tries][true]"},
        {"While 1=1 d|", "[DO ]"},
        {"While -l/ 1=1 Do Echo a; b/ Wa|", "[Wait ][Watch ]"},
        {"While -e|", "[-er]"},
        {"While -v -|", "[-c][-er][-l][-r][-v ][-w]"},
        {"AssertFail 1043:505:133 Calc -|", "[-h ][-help ][-q ][-v ]"},
        {"AssertFail 1043:505:133 Calc -q Ro|", "[Round(]"},
        {"Calc Ro|", "[Round(]"},
        {"Calc Round(1, 2)*ro|", "[Round(]"},
        {"Watch -w1 Ro|", "[Round(]"},
        {"Calc 1 xor tru|", "[true]"},
        {"Calc 1 |", "[AND ][OR ][XOR ]"},
        {"Calc 1|", ""},
        {"Calc \"Ro|", ""},
        {"Calc \"a\\\" ro|", ""},
        {"Calc TempA|", "[%S{TempAmbient}]"},
        {"Calc %|", "[%C{][%E{][%S{][%U{]"},
        {"Calc %u{b|", "[Boxes}]"},
        {"Calc %U{b|}", "[Boxes]"},
        {"Calc %E{ta|", "[target}]"},
        {"Calc %C{fil|", "[[Detection]Filter}]"},
        {"Calc %C{Detection M|", "[[Detection]MaxLight}]"},
        {"Calc gr\u00F6|", ""},
        {"Calc gr\u00F6p|", ""},
        {"Calc %X{|", ""},
        {"Calc {} Ro|", ""},
        {"Calc %C{[Detection]m|", "[[Detection]MaxLight}]"},
        {"Echo \"at %S{TempA|", "[TempAmbient}]"},
        {"Echo Ro|", ""},
        {"Echo -|", "[-f]"},
        {"Echo -f" SOURCE_DIR "/READ|", "[" SOURCE_DIR "/README.md ]"},
        {"Watch -o" SOURCE_DIR "/READ|", "[" SOURCE_DIR "/README.md ]"},
        {"Watch -o " SOURCE_DIR "/READ|", "[" SOURCE_DIR "/README.md ]"},
        {"Watch -o a.csv -c2 Ro|", "[Round(]"},
        {"Run " SOURCE_DIR "/Exam|", "[" SOURCE_DIR "/Examples/]"},
        {"Run \"" SOURCE_DIR "/READ|", "[" SOURCE_DIR "/README.md\" ]"},
        {"Set tar|", "[target]"},
        {"Set x=tar|", "[target]"},
        {"Status TempAm|", "[TempAmbient]"},
        {"Status -d2 TempAm|", "[TempAmbient]"},
        {"Status TempAmbient=T|", ""},
        {"Usage bo|", "[Boxes]"},
        {"Event c|", "[\"Cell ready\"][Clean]"},
        {"Config [detection]f|", "[[Detection]Filter]"},
        {"Help Rou|", "[Round]"},
        {"Log EE|", "[EELog]"},
        {"Test Expr|", "[ExpressionEvaluator]"},
        {"Ro|", "[Round(]"},
        {"1+ro|", "[Round(]"},
        {"If 1=1 Then Nope Ro|", ""},
    };
    for (const auto& [line, texts] : cases) {
        std::string found;
        for (const auto& candidate : Complete(line).candidates)
            found += "[" + candidate.text.ToUtf8() + "]";
        EXPECT_EQ(found, texts) << line;
    }
}

TEST_F(CompletionTest, ShowsParametersMeaningsAndPresentValues)
{
    const struct
    {
        const char* line;
        const char* shown; // label and meaning of the first candidate
    } cases[] = {
        {"Calc Ro|", "Round(number, decimals): The number as a text with 0 to 15 decimals"},
        {"Calc Average|", "Average(n1, n2, ...): The arithmetic mean"},
        {"Calc -q|", "-q: Show nothing, only return the value"},
        {"Calc %U{Bo|", "Boxes: = 7"},
        {"Event Ce|", "Cell ready: = 3"},
        {"Calc %S{TempOpticsT|", "TempOpticsTarget: = 37"},
        {"Calc %C{[Detection]Fi|", "[Detection]Filter: = Green 530"},
        {"Calc tar|", "target: = 37"},
        {"Us|", "Usage: [<pattern>]"},
    };
    for (const auto& [line, shown] : cases) {
        const Completion completion = Complete(line);
        ASSERT_FALSE(completion.candidates.empty()) << line;
        const Completion::Candidate& first = completion.candidates[0];
        EXPECT_EQ(first.label.ToUtf8() + ": " + first.meaning.ToUtf8(), shown) << line;
    }
}
