#include "Commands/CommandBase.h"
#include "Commands/CommandLine.h"
#include "Commands/Reference.h"
#include "Commands/TableFormatter.h"
#include "Services/System.h"
#include "Support/HostTexts.h"
#include "Text/ExitCode.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

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

/// What each kind of option gives for the texts: a flag "v", an int "c", a double "w" and a string "L".
template <typename Value>
std::string Ask(const WStringArray& texts)
{
    Options options(texts);
    Value value{};
    WString answer = L"absent";
    const std::string thrown = GetThrown([&] {
        if constexpr (std::is_same_v<Value, bool>)
            answer = options.TryGetFlag(L"v", 3) ? L"set" : answer;
        else if constexpr (std::is_same_v<Value, int>)
            answer = options.TryGetInt(L"c", 8, value, 0, INT_MAX) ? WString::Format(L"%d", value) : answer;
        else if constexpr (std::is_same_v<Value, double>)
            answer = options.TryGetDouble(L"w", 10, value, 0.001, 86400) ? WString::Format(L"%g", value) : answer;
        else
            answer = options.TryGetString(L"L", 9, value, 1, 1) ? value : answer;
    });
    return thrown + (thrown.empty() ? answer.ToUtf8() : "") +
        (options.ContainsUnusedOptions() ? " left " + options.GetUnusedOption().ToUtf8() : "");
}
} // namespace

TEST(CommandLineTest, OptionsAndArguments)
{
    const std::tuple<const char*, unsigned int, const char*> cases[] = {{"", plain, ""},
        {" a  b\tc ", plain, "[a][b][c]"}, {"-q a -v", plain, "{-q}{-v}[a]"}, {"-q a -v", first, "{-q}[a][-v]"},
        {"-q a -v", whole, "{-q}[a -v]"}, {"-c10 -er9015:*,*:1:4 i < 3", whole, "{-c10}{-er9015:*,*:1:4}[i < 3]"},
        {"-5+3", whole, "[-5+3]"}, {"-5 -.5 -(1) - --x", plain, "[-5][-.5][-(1)][-][--x]"}, {"-- -q", plain, "[-q]"},
        {"a -- -q --", plain, "[a][-q][--]"}, {"-v -- -abs(3)", whole, "{-v}[-abs(3)]"}, {"-v", whole, "{-v}"},
        {R"("a  b" c"d e"f "")", plain, "[a  b][cd ef][]"}, {R"("-q" -f"my file"x)", plain, "{-fmy filex}[-q]"},
        {R"(-l" " "a  b" = " c )", whole, R"({-l }["a  b" = " c])"}, {R"(a "b)", plain, "0:1:6 Missing closing quote"},
        {R"(-f"x)", whole, "0:1:6 Missing closing quote"}};
    for (const auto& [rest, flags, parts] : cases)
        EXPECT_EQ(Parse(rest, flags), parts) << rest << " flags " << flags;
    WString name;
    WString rest;
    CommandLine::SplitName(L" \tCalc\t1 + 2 \r\n", name, rest);
    EXPECT_EQ(name + L"|" + rest, L"Calc|1 + 2");
}

TEST(OptionsTest, ValuesAreCheckedWhenAskedFor)
{
    EXPECT_EQ(Ask<bool>({L"V", L"x"}), "set left -x");
    EXPECT_EQ(Ask<bool>({L"h"}), "absent left -h");
    EXPECT_EQ(Ask<bool>({L"v1"}), "0:0:3");
    EXPECT_EQ(Ask<int>({}), "absent");
    EXPECT_EQ(Ask<int>({L"C+10"}), "10");
    EXPECT_EQ(Ask<int>({L"c1", L"c2147483647"}), "2147483647");
    for (const wchar_t* text : {L"c", L"c2147483648", L"c-1", L"c1.5", L"c1e3", L"c0x10", L"c 1", L"cx"})
        EXPECT_EQ(Ask<int>({text}), "0:0:8") << WString(text).ToUtf8();
    EXPECT_EQ(Ask<double>({L"w.0015"}), "0.0015");
    for (const wchar_t* text : {L"w", L"w0", L"w86401", L"w1,5", L"wnan"})
        EXPECT_EQ(Ask<double>({text}), "0:0:10") << WString(text).ToUtf8();
    EXPECT_EQ(Ask<WString>({L"l|"}), "|");
    EXPECT_EQ(Ask<WString>({L"l"}) + Ask<WString>({L"l;;"}), "0:0:90:0:9");
}

TEST(ReferenceTest, ReplacedByValues)
{
    System::status.AddLive(L"Commands.Text", ST_String, [] { return WString(L"%E{x} \"q\""); });
    System::config.SetString(L"Commands", L"Key", L"a b");
    Environment environment;
    environment.SetString(L"x", L"%s%n");

    const std::pair<const wchar_t*, const char*> cases[] = {{L"100 % S{x} %d%n %%", "100 % S{x} %d%n %%"},
        {L"<%E{x}%e{ X }>", "<%s%n%s%n>"}, {L"%S{commands.text}", "%E{x} \"q\""},
        {L"%C{[Commands]Key}|%C{ commands key }", "a b|a b"}, {L"a %E{none} b", "0:1:5 Unknown reference: %E{none}"},
        {L"a %S{none b", "0:1:5 Unknown reference: %S{none b"}, {L"%U{none}", "0:1:5 Unknown reference: %U{none}"},
        {L"%C{Key}", "0:1:5 Unknown reference: %C{Key}"},
        {L"%C{[Commands Key}", "0:1:5 Unknown reference: %C{[Commands Key}"}};
    for (const auto& [text, expected] : cases) {
        WString result;
        const std::string thrown = GetThrown([&] { result = Reference::ReplaceAll(text, environment); });
        EXPECT_EQ(result.ToUtf8() + thrown, expected) << WString(text).ToUtf8();
    }
    System::config.TryDelete(L"Commands", L"Key");
}

TEST(TableFormatterTest, ColumnsAreAligned)
{
    TableFormatter table;
    for (const wchar_t* row : {L"Name\tValue\tNote", L"a", L"long name\t\tmore\tand more", L"é\t%s%n\t", L""})
        table.AddRow(row);
    ArrayPipe pipe;
    table.WriteTable(pipe);
    EXPECT_EQ(Join(pipe.lines), "Name       Value  Note\na\nlong name         more\tand more\né          %s%n\n");
}
