// How the loaded plug-in formats command lines, and that they do the same afterwards.

#include "Commands/CommandRunner.h"
#include "Commands/RunObserver.h"
#include "Instrument/System.h"
#include "LanguageServer/FormattedLines.h"
#include "ScriptTools/LoadedTools.h"

#include <gtest/gtest.h>

#include <random>

namespace {
/// On an instrument whose clock stands still, so that two runs may show the same.
class TimelessTools : public LoadedTools
{
public:
    TimelessTools()
    {
        for (const wchar_t* name : {L"InfoDate", L"InfoTime", L"UpTime"})
            System::status.AddLive(name, ST_String, [] { return L"1"; });
    }
};

WString Format(const WString& line)
{
    static const TimelessTools tools;
    return tools->Format(line);
}

std::string Format(const std::string& line)
{
    return Format(WString::FromUtf8(line)).ToUtf8();
}

/// Writes down what a run does: conditions, output, code and variables.
class Record : public RunObserver
{
public:
    explicit Record(const WString& line)
    {
        ArrayPipe output;
        Environment environment;
        environment.SetString(L"quote", L"\""); // which begins a text where it is put in
        const CommandRunner::Outcome outcome = CommandRunner::Run(line, output, environment, 0);
        for (const WString& each : output.lines)
            text += each + L"\n";
        WStringArray names;
        environment.GetKeys(names);
        names.Sort();
        for (const WString& name : names)
            text += name + L"=" + environment.GetString(name, 0) + L"\n";
        text += outcome.code.ToString();
    }

    void OnCondition(const CommandRun&, const WString& condition, bool holds, const WString&) noexcept override
    {
        text += condition + (holds ? L" holds\n" : L" fails\n");
    }
    void OnEnd(const CommandRun& run) noexcept override
    {
        text += run.outcome.command + L" " + run.outcome.code.ToString() + L"\n";
    }

    WString text;
};

std::string DescribeRun(const WString& line)
{
    return Record(line).text.ToUtf8();
}

/// Makes command lines that are right, nearly right or nonsense, with blanks and letter case of all kinds.
class LineMaker
{
public:
    std::string Make()
    {
        std::string line = MakeCommand(3);
        while (Pick(3) == 0)
            line.insert(Pick(line.size() + 1),
                Any({"\"", ";", "|", "\\", "%", "-", " Then ", "else", "(", " ", "\t", "\xC2\xA0"}));
        return Any({"", "  ", "\t"}) + line + Any({"", " ", ";"});
    }

private:
    std::mt19937 random{11};

    std::size_t Pick(std::size_t count) { return random() % count; }
    std::string Any(std::initializer_list<const char*> texts) { return texts.begin()[Pick(texts.size())]; }
    std::string Gap() { return Any({" ", " ", "  ", "\t", "   "}); }
    std::string Word(std::string text)
    {
        for (char& ch : text)
            ch = static_cast<char>(Pick(3) == 0 ? std::toupper(ch) : Pick(3) == 0 ? std::tolower(ch) : ch);
        return text;
    }
    std::string MakeExpression()
    {
        return Any({"1=1", "(i<3)", "i<3", "\"a;  Then b\"=\"a\"", "1 +  2", "\"do\" & x", "IsNA( x )", "1/0",
            "abs( -2 )=2", "(1=2)", "%S{TempOptics}>1"});
    }
    std::string MakeList(int depth, const std::string& separator)
    {
        std::string list = MakeCommand(depth);
        while (Pick(2) == 0)
            list += Any({"", " ", "  "}) + separator + Any({"", " ", "  "}) + MakeCommand(depth);
        return list;
    }
    std::string MakeCommand(int depth)
    {
        switch (Pick(depth > 0 ? 9 : 5)) {
        case 0: return Word("Echo") + Gap() + Any({"a   b", "\"a  ; b\"  c", "%E{x}  y", "", "--  -f", "then   Else"});
        case 1: return Word("Set") + Gap() + Any({"x=1", "x  =  2", "-i  y=3", "x=x+1", "\"z=4", "-v   x"});
        case 2: return Word("Calc") + Gap() + Any({"", "-q  ", "--  "}) + MakeExpression();
        case 3: return Word("Status") + Gap() + Any({"TempOptics", "TempO*   -n", "%E{quote}   y\"", "a   b"});
        case 4: return Any({"Nope  a", "", "Exist  b", "#  c"});
        case 5: return Word("AssertFail") + Gap() + Any({"*", "\"a  b\"", "1043:*  "}) + Gap() + MakeCommand(depth - 1);
        default: return MakeStatement(depth - 1);
        }
    }
    std::string MakeStatement(int depth)
    {
        const std::string separator = Any({";", ";", ";", "|", "/", "E", "=", " "});
        const std::string option = separator == ";" ? "" : Gap() + "-l" + separator;
        const bool isLoop = Pick(3) == 0;
        const std::string condition = isLoop ? "(i<3)" : MakeExpression();
        const std::string gap = condition.back() == ')' && Pick(2) == 0 ? "" : Gap();
        std::string line = Word(isLoop ? "While" : "If") + option + Gap() + condition + gap +
            Word(isLoop ? "do" : "then") + Gap() + MakeList(depth, separator);
        if (!isLoop && Pick(2) == 0)
            line += Gap() + Word("else") + Gap() + MakeList(depth, separator);
        return line;
    }
};
} // namespace

TEST(FormatTest, WritesCommandsAndKeywordsAsUsual)
{
    const struct
    {
        const char* line;
        const char* formatted;
    } cases[] = {
        {"calc  1 +  2 ", "Calc 1 +  2"},
        {"  CALC -q\t1", "  Calc -q 1"},
        {"if (1=1)then ECHO a;echo   b  ;calc 1 ELSE echo  c", "If (1=1) Then Echo a; Echo b; Calc 1 Else Echo c"},
        {"while -c3  -l| true DO echo a|if i=2 THEN echo b; c", "While -c3 -l| true Do Echo a | If i=2 Then Echo b; c"},
        {"assertfail  *  calc 1/0", "AssertFail * Calc 1/0"},
        {"echo -f\"a  b\"   text   with \"a  blank\"", "Echo -f\"a  b\" text   with \"a  blank\""},
        {"echo %E{x}   y", "Echo %E{x}   y"},
        {"status  -d2   TempOptics=3", "Status -d2 TempOptics=3"},
        {"set  x  =  \"a  b\"", "Set x  =  \"a  b\""},
        {"set  x=", "Set x="},
        {"watch  -o   \"a  b\"   -c3  1  +2", "Watch -o \"a  b\" -c3 1  +2"},
        {"if \"then  \" & x then calc \"a ; b\"", "If \"then  \" & x Then Calc \"a ; b\""},
        {"if 1=1 then ;echo a", "If 1=1 Then; Echo a"},
        {"while -lE 1=1 do echo  a", "While -lE 1=1 Do echo  a"},
        {"if 1=1  then", "If 1=1 Then"},
        {"calc \"a  ", "Calc \"a"},
        {"Echo a\\  ", "Echo a\\  "},
        {"# calc  1", "# calc  1"},
        {"nope  1", "nope  1"},
        {"1  +  2", "1  +  2"},
        {"", ""},
    };
    for (const auto& [line, formatted] : cases)
        EXPECT_EQ(Format(std::string(line)), formatted) << line;
}

TEST(FormatTest, KeepsWhatLinesDo)
{
    constexpr int count = 20'000;
    LineMaker maker;
    int changed = 0;
    for (int index = 0; index < count; ++index) {
        const WString line = WString::FromUtf8(maker.Make());
        const WString formatted = Format(line);
        changed += formatted != line;
        ASSERT_EQ(DescribeRun(line), DescribeRun(formatted)) << line.ToUtf8() << "\n" << formatted.ToUtf8();
        ASSERT_EQ(Format(formatted).ToUtf8(), formatted.ToUtf8());
    }
    EXPECT_GT(changed, count / 2);
}

TEST(FormatTest, SplitsAtTheLinesOfACommand)
{
    const struct
    {
        std::vector<const wchar_t*> lines;
        std::vector<WString> formatted;
    } cases[] = {
        {{L"if  1=1  then ", L"   echo  a;echo b;", L"  calc 1 "},
            {L"If 1=1 Then ", L"   Echo a; Echo b;", L"  Calc 1"}},
        {{L"ca", L"lc   1"}, {L"Ca", L"lc 1"}},
        {{L"echo a", L"", L"  "}, {L"Echo a", L"", L"  "}},
        {{L"echo  \"a  ", L"  b\""}, {L"Echo \"a  ", L"  b\""}},
    };
    for (const auto& [lines, formatted] : cases) {
        ScriptCommand command;
        for (const WString line : lines) {
            command.lengths.push_back(line.Length());
            command.text += line;
        }
        EXPECT_EQ(SplitFormatted(command, Format(command.text)), formatted) << command.text.ToUtf8();
    }
    EXPECT_TRUE(SplitFormatted({0, {1}, L"a"}, L"ab").empty());
}
