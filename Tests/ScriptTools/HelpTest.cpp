// What the loaded plug-in tells about the place of a line where "|" stands.

#include "ScriptTools/LoadedTools.h"

#include <gtest/gtest.h>

namespace {
class HelpTest : public testing::Test
{
protected:
    HelpTest()
    {
        environment.SetString(L"target", L"37");
        System::usage.Set(L"Boxes", 7);
    }

    static WString TakeCursor(const std::string& line, std::size_t& cursor)
    {
        const WString before = WString::FromUtf8(line.substr(0, line.find('|')));
        cursor = before.Length();
        return before + WString::FromUtf8(line.substr(line.find('|') + 1));
    }

    /// The text that is explained in brackets, and the first line that is said of it.
    std::string Explain(const std::string& line) const
    {
        std::size_t cursor = 0;
        const WString text = TakeCursor(line, cursor);
        const Explanation found = assistant.Explain(text.View(), cursor, environment);
        const std::string lines = found.text.ToUtf8();
        if (lines.empty())
            return "";
        const WString word(text.View().substr(found.start, found.end - found.start));
        return "[" + word.ToUtf8() + "] " + lines.substr(0, lines.find('\n'));
    }

    /// The form with the parameter at the cursor in brackets.
    std::string DescribeCall(const std::string& line) const
    {
        std::size_t cursor = 0;
        const WString text = TakeCursor(line, cursor);
        const CallForm call = assistant.DescribeCall(text.View(), cursor);
        std::string form = call.form.ToUtf8();
        if (call.active < call.parameters.size()) {
            form.insert(call.parameters[call.active].end, "]");
            form.insert(call.parameters[call.active].start, "[");
        }
        return form;
    }

    const LoadedTools tools;
    const ScriptAssistant& assistant = *ScriptAssistant::GetOrNull();
    Environment environment;
};
} // namespace

TEST_F(HelpTest, ExplainsWhatStandsAtTheCursor)
{
    const std::string calc = "Usage: Calc [<options>] <expression>";
    const std::string round = "Round(number, decimals) - The number as a text with 0 to 15 decimals. Halves go";
    const struct
    {
        const char* line;
        std::string explained;
    } cases[] = {
        {"|calc 1", "[calc] " + calc},
        {"  calc| 1", "[calc] " + calc},
        {"If 1=1 Then Ca|lc 1", "[Calc] " + calc},
        {"If 1=1 Then Echo a; calc| 1 Else Echo b", "[calc] " + calc},
        {"While -l/ 1=1 Do Echo a; b/ Cal|c 1", "[Calc] " + calc},
        {"AssertFail 1043:505:133 Calc| 1/0", "[Calc] " + calc},
        {"Calc -|q 1", "[-q] -q: Show nothing, only return the value"},
        {"While -c|10 1=1 Do Echo", "[-c10] -c: End after so many iterations (0 to 2147483647)"},
        {"While -er|9015:* 1=1 Do Echo", "[-er9015:*] -er: Go on after a failure with one of these exit codes"},
        {"While -w|1 1=1 Do Echo", "[-w1] -w: Wait so many seconds after each iteration (0.001 to 86400)"},
        {"Calc Rou|nd(1.25, 1)", "[Round] " + round},
        {"Calc Round|(1.25, 1)", "[Round] " + round},
        {"If round(1|,2)=1 The", ""},
        {"1+ROUND|(2.5,0)", "[ROUND] " + round},
        {"Calc %S{Temp|Optics}+1", "[%S{TempOptics}] status item TempOptics = 36.8"},
        {"Calc |%S{TempOptics}", "[%S{TempOptics}] status item TempOptics = 36.8"},
        {"Calc %C{Detection Fi|lter}", "[%C{Detection Filter}] setting Detection Filter = Green 530"},
        {"Calc %u{ Boxes| }", "[%u{ Boxes }] usage counter Boxes = 7"},
        {"Echo \"at %S{TempOpti|cs}\"", "[%S{TempOptics}] status item TempOptics = 36.8"},
        {"Calc %S{TempOptic|}", "[%S{TempOptic}] %S{TempOptic} does not exist (did you mean %S{TempOptics}?)"},
        {"Calc 1+tar|get", "[target] variable target = 37"},
        {"Set tar|get=1", "[target] variable target = 37"},
        {"Set x=tar|get", "[target] variable target = 37"},
        {"Status TempOp|tics", "[TempOptics] status item TempOptics = 36.8"},
        {"Config [Detection]Fi|lter", "[[Detection]Filter] setting [Detection]Filter = Green 530"},
        {"Calc tr|ue", "[true] built-in true = TRUE"},
        {"Calc \"Round(tar|get\"", ""},
        {"Calc noSuch|Name", ""},
        {"Calc noSuch|Name(1)", ""},
        {"Calc 1| + 2", ""},
        {"|", ""},
        {"If 1=1 Th|en", ""},
        {"Nope tar|get", "[target] variable target = 37"},
    };
    for (const auto& [line, explained] : cases)
        EXPECT_EQ(Explain(line), explained) << line;
    EXPECT_EQ(Explain("If 1=1 Then Echo %E{tar|get}; Echo"), "[%E{target}] variable target = 37");
}

TEST_F(HelpTest, DescribesTheInnermostCall)
{
    const struct
    {
        const char* line;
        const char* form;
    } cases[] = {
        {"Calc Round(|", "Round([number], decimals)"},
        {"Calc Round(1, |", "Round(number, [decimals])"},
        {"Calc Round(1, 2, 3|", "Round(number, decimals)"},
        {"Calc round(IF(a,|b,2), 1)", "IF(condition, [ifTrue], ifFalse)"},
        {"Calc Round(abs(1),|", "Round(number, [decimals])"},
        {"Calc Round((1+(2|", "Round([number], decimals)"},
        {"Calc Round(\"a,(b\",|", "Round(number, [decimals])"},
        {"Calc Round(1,2)|", ""},
        {"Calc (1|", ""},
        {"Calc noSuchName(1|", ""},
        {"Calc \"Round(|", ""},
        {"If abs(|", "abs([x])"},
        {"If 1=1 Then Calc 1; Set x=abs(|", "abs([x])"},
        {"1+abs(|", "abs([x])"},
        {"Echo abs(|", ""},
        {"If abs(1)=1 Then |", ""},
        {"", ""},
    };
    for (const auto& [line, form] : cases)
        EXPECT_EQ(DescribeCall(line), form) << line;
}
