#include "Commands/CommandBase.h"
#include "Commands/CommandLine.h"
#include "Commands/Reference.h"
#include "Commands/TableFormatter.h"
#include "Services/System.h"
#include "Support/HostTexts.h"
#include "Text/ExitCode.h"

#include <gtest/gtest.h>

namespace {
constexpr unsigned int plain = 0;
constexpr unsigned int first = CommandFlags::optionsFirst;
constexpr unsigned int whole = CommandFlags::optionsFirst | CommandFlags::singleArgument;

/// The options in braces, then the arguments in brackets; or what is thrown.
std::string Parse(const std::string& rest, unsigned int flags)
{
    std::string result;
    const std::string thrown = GetThrown([&] {
        ArgumentList arguments;
        Options options;
        CommandLine::Parse(WString::FromUtf8(rest), flags, arguments, options);
        for (; options.ContainsUnusedOptions();
             options.TryGetFlag(options.GetUnusedOption().Substring(1).ToCString(), 0))
            result += "{" + options.GetUnusedOption().ToUtf8() + "}";
        for (unsigned int index = 0; index < arguments.Count(); ++index)
            result += "[" + arguments.At(index).ToUtf8() + "]";
    });
    return result + thrown;
}

template <typename Get>
std::string Ask(const WStringArray& texts, Get get)
{
    Options options(texts);
    std::string answer;
    const std::string thrown = GetThrown([&] { answer = get(options); });
    return answer + thrown + (options.ContainsUnusedOptions() ? " left " + options.GetUnusedOption().ToUtf8() : "");
}

std::string AskFlag(const WStringArray& texts, const wchar_t* name)
{
    return Ask(texts, [&](Options& options) { return options.TryGetFlag(name, 3) ? "set" : "absent"; });
}

std::string AskInt(const WStringArray& texts)
{
    return Ask(texts, [](Options& options) {
        int value = -1;
        return options.TryGetInt(L"c", 8, value, 0, 2147483647) ? std::to_string(value) : "absent";
    });
}

std::string AskDouble(const WStringArray& texts)
{
    return Ask(texts, [](Options& options) {
        double value = -1;
        return options.TryGetDouble(L"w", 10, value, 0.001, 86400) ? std::to_string(value) : "absent";
    });
}

std::string AskString(const WStringArray& texts)
{
    return Ask(texts, [](Options& options) {
        WString value = L"kept";
        return options.TryGetString(L"L", 9, value, 1, 1) ? value.ToUtf8() : "absent";
    });
}
} // namespace

TEST(CommandLineTest, OptionsAndArguments)
{
    const struct
    {
        const char* rest;
        unsigned int flags;
        const char* parts;
    } cases[] = {
        {"", plain, ""},
        {" a  b\tc ", plain, "[a][b][c]"},
        {"-q a -v", plain, "{-q}{-v}[a]"},
        {"-q a -v", first, "{-q}[a][-v]"},
        {"-q a -v", whole, "{-q}[a -v]"},
        {"-c10 -er9015:*,*:1:4 i < 3", whole, "{-c10}{-er9015:*,*:1:4}[i < 3]"},
        {"-5+3", whole, "[-5+3]"},
        {"-5 -.5 -(1) - --x", plain, "[-5][-.5][-(1)][-][--x]"},
        {"-- -q", plain, "[-q]"},
        {"a -- -q --", plain, "[a][-q][--]"},
        {"-v -- -abs(3)", whole, "{-v}[-abs(3)]"},
        {"-v", whole, "{-v}"},
        {R"("a  b" c"d e"f "")", plain, "[a  b][cd ef][]"},
        {R"("-q" -f"my file"x)", plain, "{-fmy filex}[-q]"},
        {R"(-l" " "a  b" = " c )", whole, R"({-l }["a  b" = " c])"},
        {R"(a "b)", plain, "0:1:6 Missing closing quote"},
        {R"(-f"x)", whole, "0:1:6 Missing closing quote"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(Parse(test.rest, test.flags), test.parts) << test.rest << " flags " << test.flags;
}

TEST(CommandLineTest, NameEndsAtWhiteSpace)
{
    for (const wchar_t* line : {L"Calc 1 + 2", L" \tCalc\t1 + 2 \r\n"}) {
        WString name;
        WString rest;
        CommandLine::SplitName(line, name, rest);
        EXPECT_EQ(name.ToUtf8() + "|" + rest.ToUtf8(), "Calc|1 + 2");
    }
}

TEST(OptionsTest, ValuesAreCheckedWhenAskedFor)
{
    EXPECT_EQ(AskFlag({L"V"}, L"v"), "set");
    EXPECT_EQ(AskFlag({L"h"}, L"help"), "absent left -h");
    EXPECT_EQ(AskFlag({L"v1"}, L"v"), "0:0:3");
    EXPECT_EQ(AskFlag({L"q", L"x"}, L"q"), "set left -x");

    EXPECT_EQ(AskInt({}), "absent");
    EXPECT_EQ(AskInt({L"C+10"}), "10");
    EXPECT_EQ(AskInt({L"c1", L"c2147483647"}), "2147483647");
    for (const wchar_t* text : {L"c", L"c2147483648", L"c-1", L"c1.5", L"c1e3", L"c0x10", L"c 1", L"cx"})
        EXPECT_EQ(AskInt({text}), "0:0:8") << WString(text).ToUtf8();

    EXPECT_EQ(AskDouble({L"w.0015"}), "0.001500");
    for (const wchar_t* text : {L"w", L"w0", L"w86401", L"w1,5", L"wnan"})
        EXPECT_EQ(AskDouble({text}), "0:0:10") << WString(text).ToUtf8();

    EXPECT_EQ(AskString({L"l|"}), "|");
    EXPECT_EQ(AskString({L"l"}), "0:0:9");
    EXPECT_EQ(AskString({L"l;;"}), "0:0:9");
}

TEST(ReferenceTest, ReplacedByValues)
{
    System::status.AddLive(L"Commands.Text", ST_String, [] { return WString(L"%E{x} \"q\""); });
    System::config.SetString(L"Commands", L"Key", L"a b");
    Environment environment;
    environment.SetString(L"x", L"%s%n");

    const struct
    {
        const wchar_t* text;
        const char* result;
    } cases[] = {
        {L"100 % S{x} %d%n %%", "100 % S{x} %d%n %%"},
        {L"<%E{x}%e{ X }>", "<%s%n%s%n>"},
        {L"%S{commands.text}", "%E{x} \"q\""},
        {L"%C{[Commands]Key}|%C{ commands key }", "a b|a b"},
        {L"a %E{none} b", "0:1:5 Unknown reference: %E{none}"},
        {L"a %S{none b", "0:1:5 Unknown reference: %S{none b"},
        {L"%U{none}", "0:1:5 Unknown reference: %U{none}"},
        {L"%C{Key}", "0:1:5 Unknown reference: %C{Key}"},
        {L"%C{[Commands Key}", "0:1:5 Unknown reference: %C{[Commands Key}"},
    };
    for (const auto& test : cases) {
        WString result;
        const std::string thrown = GetThrown([&] { result = Reference::ReplaceAll(test.text, environment); });
        EXPECT_EQ(result.ToUtf8() + thrown, test.result) << WString(test.text).ToUtf8();
    }
    System::config.TryDelete(L"Commands", L"Key");
}

TEST(TableFormatterTest, ColumnsAreAligned)
{
    TableFormatter table;
    for (const wchar_t* row : {L"Name\tValue", L"a", L"long name\t\tmore", L"é\t%s%n\t", L""})
        table.AddRow(row);
    ArrayPipe pipe;
    table.WriteTable(pipe);
    EXPECT_EQ(Join(pipe.lines),
        "Name       Value\n"
        "a\n"
        "long name         more\n"
        "é          %s%n\n");
}
