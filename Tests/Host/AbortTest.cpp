#include "Text/Abort.h"
#include "Commands/TableFormatter.h"
#include "Instrument/System.h"
#include "Services/File.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <thread>
#include <vector>

namespace {
class AbortTest : public testing::Test
{
protected:
    ~AbortTest() override { Abort::Clear(); }

    using Operation = std::function<void()>;

    /// The operations on texts, with one of that length.
    static std::vector<std::pair<const char*, Operation>> MakeOperations(std::size_t length)
    {
        const WString text(length, L'\u0416');
        const WString other = text.ToLowerCase();
        const std::string bytes = text.ToUtf8();
        const WString pattern = L"*" + text.Left(2000) + L"?b*";
        return {
            {"copy", [=] { WString() = text; }},
            {"append", [=] { WString(L"x").Append(text.View()); }},
            {"upper case", [=] { text.ToUpperCase(); }},
            {"lower case", [=] { text.ToLowerCase(); }},
            {"trim", [=] { WString(text.Length(), L' ').Trim(); }},
            {"equal", [=] { EXPECT_TRUE(text.Equals(other.View(), true)); }},
            {"start", [=] { EXPECT_TRUE(text.StartsWith(other, true)); }},
            {"end", [=] { EXPECT_TRUE(text.EndsWith(other, true)); }},
            {"find", [=] { EXPECT_EQ(text.IndexOf(L"b"), -1); }},
            {"find itself", [=] { EXPECT_EQ(text.IndexOf(text), 0); }},
            {"replace", [=] { WString(text).Replace(L"b", L"c", true); }},
            {"match", [=] { EXPECT_TRUE(text.IsWildcardMatch(other.ToCString(), true)); }},
            {"match a piece", [=] { EXPECT_FALSE(text.IsWildcardMatch(pattern.ToCString(), true)); }},
            {"split at a word",
                [=] {
                    WString left, right;
                    text.TrySplitAtKeyword(L"then", left, right);
                }},
            {"split",
                [=] {
                    WStringArray items;
                    text.GetWStringArray(items, 0, 9, 1, 0, UINT_MAX, L";");
                }},
            {"next piece",
                [=] {
                    std::size_t at = 0;
                    text.StrTok(L";", at);
                }},
            {"format", [=] { WString::Format(L"%s", text); }},
            {"to UTF-8", [=] { text.ToUtf8(); }},
            {"from UTF-8", [=] { WString::FromUtf8(bytes); }},
        };
    }
};
} // namespace

TEST_F(AbortTest, EndsOperationsOnLongTextsAlone)
{
    const auto operations = MakeOperations(3 * Abort::interval);
    const auto shortOperations = MakeOperations(500);
    Abort::Request();
    for (const auto& [name, operation] : operations)
        EXPECT_EQ(GetThrown(operation), "0:1:4 Aborted") << name;
    for (const auto& [name, operation] : shortOperations)
        EXPECT_EQ(GetThrown(operation), "") << name;
}

TEST_F(AbortTest, EndsListsAndFiles)
{
    const TemporaryFolder folder;
    const WString file = WString::FromUtf8(folder.Write("long.ini", std::string(3 * Abort::interval, ';')));
    std::string settings; // fewer characters than an interval, but more comparisons
    for (int i = 0; i < 10000; ++i)
        settings += std::to_string(i) + "=\n";
    const std::string settingsFile = folder.Write("settings.ini", settings);
    WStringArray names;
    for (std::size_t i = 0; i < Abort::interval; ++i)
        names.Add(WString::Format(L"%u", i * 7919 % Abort::interval));
    TableFormatter table;
    table.AddRow(L"a\tb");
    ArrayPipe pipe;
    Abort::Request();
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"sort", [&] { names.Sort(); }},
        {"table", [&] { table.WriteTable(pipe); }},
        {"processes", [&] { System::GetMatchingProcess(L"*", L"no such process"); }},
        {"settings", [&] { ConfigFileData().Load(file.ToUtf8()); }},
        {"many settings", [&] { ConfigFileData().Load(settingsFile); }},
        {"write", [&] { File(file, FileOpenMode::Append, FileAccessMode::Write).Write("x", 1); }},
    };
    for (const auto& [name, operation] : operations)
        EXPECT_EQ(GetThrown(operation), "0:1:4 Aborted") << name;
    EXPECT_TRUE(pipe.lines.IsEmpty());
}

TEST_F(AbortTest, IsSeenWhileAnOperationRuns)
{
    using Clock = std::chrono::steady_clock;
    const WString text(2'000'000, L'a'); // half a minute at least
    const WString pattern = L"*?" + WString(20'000, L'a') + L"b*";
    Clock::time_point requested;
    std::thread requester([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        requested = Clock::now();
        Abort::Request();
    });
    EXPECT_EQ(GetThrown([&] { text.IsWildcardMatch(pattern.ToCString(), true); }), "0:1:4 Aborted");
    const auto ended = Clock::now();
    requester.join();
    EXPECT_LT(ended - requested, std::chrono::seconds(5));
}
