#include "Commands/CommandBase.h"
#include "Commands/CommandLine.h"
#include "Commands/TableFormatter.h"
#include "Support/HostTexts.h"

#include <gtest/gtest.h>

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

TEST(TableFormatterTest, ColumnsAreAligned)
{
    TableFormatter table;
    for (const wchar_t* row : {L"Name\tValue\tNote", L"a", L"long name\t\tmore\tand more", L"é\t%s%n\t", L""})
        table.AddRow(row);
    ArrayPipe pipe;
    table.WriteTable(pipe);
    EXPECT_EQ(Join(pipe.lines), "Name       Value  Note\na\nlong name         more\tand more\né          %s%n\n");
}
