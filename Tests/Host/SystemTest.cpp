#include "Instrument/System.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;

class SystemStart : public testing::Test
{
protected:
    TemporaryFolder folder;
    const std::string profile = SOURCE_DIR "/Shell/Profile";
    const std::string data = folder.Path("a%20b?#/c");

    std::string Read(const std::string& name) const { return TemporaryFolder::ReadFile(data + "/" + name); }
    std::string StartWith(const std::string& settings) const
    {
        fs::create_directories(data);
        folder.Write("a%20b?#/c/Config.ini", settings);
        return Join(System::Start(data, profile));
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
    EXPECT_TRUE(
        System::status.TryGetDouble(L"UpTime", first, 0) && System::status.TryGetDouble(L"UpTime", second, first));

    folder.Write("a%20b?#/c/Status.ini", "[Items]\nOwn=int:1\n");
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
    EXPECT_EQ(StartWith("[Random]\nSeed=-1\n"),
        "File error: " + data +
            "/Config.ini: [Random] Seed is no whole number from 0 to 4294967295; the system draws one");
}

TEST_F(SystemStart, WhatIsFaultyIsReportedAndWorkedAround)
{
    const std::string file = folder.Write("file", "");
    EXPECT_EQ(Join(System::Start(file + "/data", profile)),
        "File error: " + file + "/data: Not a directory; the values of the profile are used, and cannot be saved");
    EXPECT_TRUE(System::config.Contains(L"UnitTest", L"IntValue") && System::status.ContainsItem(L"TempOptics"));

    std::string lines;
    std::string reports;
    for (int i = 1; i <= 12; ++i) {
        lines += "x\n";
        if (i <= 11)
            reports += data + "/Config.ini:" + std::to_string(i) + ": \"x\" is neither a [section] nor a key=value" +
                (i <= 10 ? "; the line stays as it is\n" : ", and 1 more lines");
    }
    EXPECT_EQ(StartWith(lines + "[S]\nK=1\n"), reports);
    EXPECT_TRUE(System::config.Contains(L"S", L"K"));
}

TEST_F(SystemStart, AFolderThatCannotBeWrittenIsReadAlone)
{
    const auto isReadAlone = [&](fs::perms permissions) {
        fs::permissions(data, permissions);
        return RunUnprivileged([&] {
            const bool isWhole = System::Start(data, profile).IsEmpty();
            System::errorLog.WriteLine(L"lost");
            int value = 0;
            return isWhole && System::usage.TryGetUsageValue(L"X", value) && value == 7 &&
                !System::usage.Increment(L"X") && !System::usage.Set(L"X", 1) && !System::MayChange() &&
                GetThrown([] { System::config.Save(); }) ==
                "0:1:10 File error: " + data + "/Config.ini: Permission denied";
        });
    };
    EXPECT_TRUE(ChildProcess([&] { return System::Start(data, profile), System::usage.Set(L"X", 7); }).Wait());
    fs::permissions(folder.GetPath(), fs::perms(0755));
    const auto count = [&] { return std::distance(fs::directory_iterator(data), {}); };
    const auto files = count();
    for (const int permissions : {0555, 0777}) {
        EXPECT_TRUE(isReadAlone(fs::perms(permissions))) << "with the files that a counter database has beside it";
        EXPECT_EQ(count(), files);
    }
    fs::permissions(data, fs::perms(0755));
    System::Start(data, profile);
    System::usage.Open(folder.Path("Other.db"));
    EXPECT_FALSE(fs::exists(data + "/Usage.db-wal"));
    for (const int permissions : {0555, 0777}) {
        EXPECT_TRUE(isReadAlone(fs::perms(permissions))) << "without: a set counter stands in the file at the end";
        EXPECT_EQ(count(), files - 2);
    }
    fs::permissions(data, fs::perms(0755));
}

TEST_F(SystemStart, AFolderThatCannotBeEnteredIsOneFault)
{
    const auto report = [&](const char* name, const char* consequence) {
        return "File error: " + data + "/" + name + ": Permission denied; " + consequence;
    };
    const std::string reports = report("Usage.db", "nothing is counted\n") +
        report("Config.ini", "there are no settings until it can be read\n") +
        report("Status.ini", "there are no items until it can be read");
    fs::create_directories(data);
    fs::permissions(folder.GetPath(), fs::perms(0755));
    fs::permissions(data, fs::perms(0600));
    EXPECT_TRUE(RunUnprivileged([&] { return Join(System::Start(data, profile)) == reports && !System::MayChange(); }));
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
