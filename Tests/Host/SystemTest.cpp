#include "Services/System.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <tuple>

namespace fs = std::filesystem;

class SystemStart : public testing::Test
{
protected:
    TemporaryFolder folder;
    const std::string profile = SOURCE_DIR "/Shell/Profile";
    const std::string data = folder.Path("a/b");

    std::string Read(const std::string& name) const { return folder.Read("a/b/" + name); }
    void StartWith(const std::string& settings) const
    {
        fs::create_directories(data);
        folder.Write("a/b/Config.ini", settings);
        System::Start(data, profile);
    }
};

TEST_F(SystemStart, MakesTheFolderFromTheProfile)
{
    System::Start(data, profile);
    EXPECT_EQ(System::GetDataFolder(), data);
    for (const char* name : {"Config.ini", "Status.ini"})
        EXPECT_EQ(Read(name), TemporaryFolder::ReadFile(profile + "/" + name));
    EXPECT_TRUE(System::config.Contains(L"UnitTest", L"IntValue"));
    EXPECT_TRUE(System::usage.Increment(L"X"));

    const auto matches = [](const wchar_t* name, const wchar_t* pattern) {
        WString value;
        return System::status.TryGetString(name, value) && value.IsWildcardMatch(pattern, false);
    };
    EXPECT_TRUE(matches(L"InfoDate", L"20*-*-*") && matches(L"InfoTime", L"*:*:*"));
    double first = -1;
    double second = -1;
    EXPECT_TRUE(System::status.TryGetDouble(L"UpTime", first, 0, DBL_MAX));
    EXPECT_TRUE(System::status.TryGetDouble(L"UpTime", second, first, DBL_MAX));

    folder.Write("a/b/Status.ini", "[Items]\nOwn=int:1\n");
    System::Start(data, profile);
    EXPECT_TRUE(System::status.ContainsItem(L"Own"));
    EXPECT_FALSE(System::status.ContainsItem(L"TempOpticsStable")) << "an existing file is kept";
}

TEST_F(SystemStart, ASeedMakesRandomNumbersRepeatable)
{
    const auto draw = [] {
        const double first = System::random.Next();
        return std::pair(first, System::random.Next());
    };
    StartWith("[Random]\nSeed=4294967295\n");
    const auto drawn = draw();
    System::Start(data, profile);
    EXPECT_EQ(draw(), drawn);
    EXPECT_NE(draw(), drawn);
    EXPECT_EQ(GetThrown([&] { StartWith("[Random]\nSeed=-1\n"); }),
        "0:1:10 File error: " + data + "/Config.ini: [Random] Seed is no whole number from 0 to 4294967295");
}

TEST_F(SystemStart, WhatIsMissingIsReported)
{
    EXPECT_EQ(GetThrown([&] { System::Start(data, folder.Path("none")); }),
        "0:1:10 File error: " + folder.Path("none/Config.ini") + ": No such file or directory");
}

TEST_F(SystemStart, AFolderThatCannotBeWrittenIsReadAloneWhenItHoldsTheFiles)
{
    EXPECT_TRUE(ChildProcess([&] { return System::Start(data, profile), System::usage.Set(L"X", 7); }).Wait());
    fs::permissions(folder.GetPath(), fs::perms(0755));
    fs::permissions(data, fs::perms(0555));
    EXPECT_TRUE(RunUnprivileged([&] {
        System::Start(data, profile);
        System::errorLog.WriteLine(L"lost");
        int value = 0;
        return System::usage.TryGetUsageValue(L"X", value) && value == 7 && !System::usage.Increment(L"X") &&
            GetThrown([] { System::config.Save(); }) == "0:1:10 File error: " + data + "/Config.ini: Permission denied";
    }));
    fs::remove(data + "/Status.ini");
    EXPECT_TRUE(RunUnprivileged([&] {
        return GetThrown([&] { System::Start(data, profile); }) ==
            "0:1:10 File error: " + data + "/Status.ini: Permission denied";
    }));
    fs::permissions(data, fs::perms(0755));
}

TEST_F(SystemStart, LogsAreEnabledByTheConfiguration)
{
    LogFile early(L"", L"Early", 1000);
    EXPECT_FALSE(early.IsEnabled());
    StartWith("[Log]\nerrorlog=false\nEarly=true\nLate=TRUE\nOdd=maybe\n");
    EXPECT_TRUE(early.IsEnabled() && LogFile(L"", L"Late", 1000).IsEnabled());
    EXPECT_FALSE(System::errorLog.IsEnabled() || LogFile(L"", L"Odd", 1000).IsEnabled());
    StartWith("");
    EXPECT_TRUE(System::errorLog.IsEnabled());
}

TEST_F(SystemStart, LogLinesGoToTheFileAndAFullOneBecomesTheOlderGeneration)
{
    System::Start(data, profile);
    LogFile log(L"head", L"Full", 23);
    log.WriteLine(L"dropped");
    EXPECT_FALSE(fs::exists(data + "/Full.txt"));
    log.SetEnabled(true);
    log.WriteLine(L"\n->%s", L"%s ä");
    log.DoWriteLine(L"%d");
    EXPECT_EQ(Read("Full.txt"), "head\n\n->%s ä\n%d\n");
    log.WriteLine(L"12345");
    EXPECT_EQ(Read("Full.txt"), "head\n\n->%s ä\n%d\n12345\n") << "23 bytes";
    log.WriteLine(L"");
    EXPECT_EQ(Read("Full.old.txt"), "head\n\n->%s ä\n%d\n12345\n");
    EXPECT_EQ(Read("Full.txt"), "head\n\n");
    log.DoWriteLine(WString(30, L'x'));
    EXPECT_EQ(Read("Full.old.txt"), "head\n\n");
    EXPECT_EQ(Read("Full.txt"), "head\n" + std::string(30, 'x') + "\n") << "a long line is not cut";

    fs::create_directory(data + "/Blocked.txt");
    LogFile blocked(L"", L"Blocked", 1000);
    blocked.SetEnabled(true);
    EXPECT_EQ(GetThrown([&] { blocked.WriteLine(L"lost"); }), "");
}

/// What is wrong with a generation of 99 lines, or "" for one that is right or not there yet.
static std::string CheckGeneration(const std::string& text)
{
    if (!text.empty() && (text.size() != 5 + 99 * 40 || !text.starts_with("head\n")))
        return std::to_string(text.size()) + " bytes";
    for (std::size_t at = 5; at < text.size(); at += 40)
        if (text.substr(at, 40) != std::string(39, text[at]) + "\n")
            return "mixed lines";
    return "";
}

TEST_F(SystemStart, ProcessesShareALog)
{
    System::Start(data, profile);
    const auto writeOften = [](wchar_t ch) {
        LogFile log(L"head", L"Shared", 4000); // a hundredth of all lines
        log.SetEnabled(true);
        for (int i = 0; i < 5000; ++i)
            log.DoWriteLine(WString(39, ch));
        return true;
    };
    ChildProcess first([&] { return writeOften(L'a'); });
    ChildProcess second([&] { return writeOften(L'b'); });
    for (int i = 0; i < 3000; ++i) // each older generation that comes by is full and no longer written
        ASSERT_EQ(CheckGeneration(Read("Shared.old.txt")), "");
    EXPECT_TRUE(first.Wait() && second.Wait());
    EXPECT_EQ(CheckGeneration(Read("Shared.old.txt")), "");
}

/// A process that does nothing.
static ChildProcess Idle(const std::string& program, const std::string& name, const std::string& mark, const char* last)
{
    return ChildProcess([&] { return execl(program.c_str(), name.c_str(), mark.c_str(), last, nullptr) == 0; });
}

TEST(ProcessTable, IsSearchedByNameAndCommandLine)
{
    const TemporaryFolder folder;
    const std::string program = folder.Path("InstrumentServerOfTheBench"); // longer than the 15 characters of a name
    fs::create_symlink("/bin/sleep", program);
    const std::string unique = std::to_string(getpid()) + "1";
    const ChildProcess first = Idle(program, program, unique, "1");
    const ChildProcess second = Idle("/bin/sleep", program, unique, "2");
    ASSERT_LT(first.GetId(), second.GetId()); // unless they have come around
    const std::wstring line = L"*/instrumentserver* " + std::wstring(unique.begin(), unique.end());
    while (System::GetMatchingProcess(L"*", (line + L" 1").c_str()) != first.GetId() ||
        System::GetMatchingProcess(L"*", (line + L" 2").c_str()) != second.GetId())
        usleep(1000); // until the programs have taken over
    const std::tuple<const wchar_t*, std::wstring, int> rows[] = {
        {L"InstrumentServerOfTheBench", line + L" ?", first.GetId()},
        {L"instrumentSERVERof*", line + L"*", first.GetId()}, {L"InstrumentServe", line + L"*", -1},
        {L"sleep", line + L" 2", second.GetId()}, {L"*", line + L" ?", first.GetId()}, {L"*", line, -1},
        {L"sleep", line + L" 1", -1}, {L"nosuchcommand*", L"*", -1}};
    for (const auto& [command, commandLine, id] : rows)
        EXPECT_EQ(System::GetMatchingProcess(command, commandLine.c_str()), id)
            << WString(command).ToUtf8() << ": " << WString(commandLine.c_str()).ToUtf8();
    EXPECT_GT(System::GetMatchingProcess(L"instrumentserverof*bench", nullptr), 0);
    EXPECT_EQ(System::GetMatchingProcess(L"nosuchcommand*", nullptr), -1);
}
