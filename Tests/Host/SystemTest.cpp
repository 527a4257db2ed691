#include "Services/System.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <optional>
#include <vector>

#include <fcntl.h>

class SystemStart : public testing::Test
{
protected:
    TemporaryFolder folder;
    const std::string profile = SOURCE_DIR "/Shell/Profile";
    const std::string data = folder.Path("a/b");

    std::string Read(const std::string& name) const { return folder.Read("a/b/" + name); }
    void WriteConfig(const std::string& text) const
    {
        std::filesystem::create_directories(data);
        folder.Write("a/b/Config.ini", text);
    }
};

TEST_F(SystemStart, MakesTheFolderFromTheProfile)
{
    System::Start(data, profile);
    EXPECT_EQ(System::GetDataFolder(), data);
    EXPECT_EQ(Read("Config.ini"), TemporaryFolder::ReadFile(profile + "/Config.ini"));
    EXPECT_EQ(Read("Status.ini"), TemporaryFolder::ReadFile(profile + "/Status.ini"));
    EXPECT_TRUE(System::config.Contains(L"UnitTest", L"IntValue"));
    EXPECT_TRUE(System::status.ContainsItem(L"TempOpticsStable"));
    EXPECT_TRUE(System::usage.Increment(L"X"));

    folder.Write("a/b/Status.ini", "[Items]\nOwn=int:1\n");
    System::Start(data, profile);
    EXPECT_TRUE(System::status.ContainsItem(L"Own"));
    EXPECT_FALSE(System::status.ContainsItem(L"TempOpticsStable")) << "an existing file is kept";
}

TEST_F(SystemStart, GivesLiveItems)
{
    System::Start(data, profile);
    const auto matches = [](const wchar_t* name, const wchar_t* pattern) {
        WString value;
        return System::status.TryGetString(name, value) && value.IsWildcardMatch(pattern, false);
    };
    EXPECT_TRUE(matches(L"InfoDate", L"20*-*-*"));
    EXPECT_TRUE(matches(L"InfoTime", L"*:*:*"));
    double first = -1;
    double second = -1;
    EXPECT_TRUE(System::status.TryGetDouble(L"UpTime", first, 0, DBL_MAX));
    EXPECT_TRUE(System::status.TryGetDouble(L"UpTime", second, first, DBL_MAX));
}

TEST_F(SystemStart, ASeedMakesRandomNumbersRepeatable)
{
    const auto draw = [] {
        const double first = System::random.Next();
        return std::pair(first, System::random.Next());
    };
    WriteConfig("[Random]\nSeed=4294967295\n");
    System::Start(data, profile);
    const auto drawn = draw();
    System::Start(data, profile);
    EXPECT_EQ(draw(), drawn);
    EXPECT_NE(draw(), drawn);
    WriteConfig("[Random]\nSeed=-1\n");
    EXPECT_EQ(GetThrown([&] { System::Start(data, profile); }),
        "0:1:10 File error: " + data + "/Config.ini: [Random] Seed is no whole number from 0 to 4294967295");
}

TEST_F(SystemStart, WhatIsMissingIsReported)
{
    EXPECT_EQ(GetThrown([&] { System::Start(data, folder.Path("none")); }),
        "0:1:10 File error: " + folder.Path("none/Config.ini") + ": No such file or directory");
    const std::string file = folder.Write("file", "");
    EXPECT_EQ(GetThrown([&] { System::Start(file + "/data", profile); }),
        "0:1:10 File error: " + file + "/data: Not a directory");
}

TEST_F(SystemStart, AFolderThatCannotBeWrittenIsReadAloneWhenItHoldsTheFiles)
{
    namespace fs = std::filesystem;
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
    WriteConfig("[Log]\nerrorlog=false\nEarly=true\nLate=TRUE\nOdd=maybe\n");
    System::Start(data, profile);
    EXPECT_TRUE(early.IsEnabled());
    EXPECT_FALSE(System::errorLog.IsEnabled());
    EXPECT_TRUE(LogFile(L"", L"Late", 1000).IsEnabled());
    EXPECT_FALSE(LogFile(L"", L"Odd", 1000).IsEnabled());
    EXPECT_FALSE(LogFile(L"", L"Unnamed", 1000).IsEnabled());
    WriteConfig("");
    System::Start(data, profile);
    EXPECT_TRUE(System::errorLog.IsEnabled());
}

TEST_F(SystemStart, LogLinesGoToTheFile)
{
    System::Start(data, profile);
    LogFile log(L"", L"Lines", 1000);
    log.WriteLine(L"dropped");
    EXPECT_FALSE(std::filesystem::exists(data + "/Lines.txt"));
    log.SetEnabled(true);
    log.WriteLine(L"\n->Expression: %s", L"100%s ä");
    log.DoWriteLine(L"%d");
    EXPECT_EQ(Read("Lines.txt"), "\n->Expression: 100%s ä\n%d\n");
    EXPECT_EQ(log.GetPath(), data + "/Lines.txt");

    std::filesystem::create_directory(data + "/Blocked.txt");
    LogFile blocked(L"", L"Blocked", 1000);
    blocked.SetEnabled(true);
    EXPECT_EQ(GetThrown([&] { blocked.WriteLine(L"lost"); }), "");
}

TEST_F(SystemStart, AFullLogBecomesTheOlderGeneration)
{
    System::Start(data, profile);
    LogFile log(L"head", L"Full", 20);
    log.SetEnabled(true);
    log.WriteLine(L"one");
    EXPECT_EQ(Read("Full.txt"), "head\none\n");
    log.WriteLine(L"1234567890");
    EXPECT_EQ(Read("Full.txt"), "head\none\n1234567890\n") << "20 bytes";
    log.WriteLine(L"");
    EXPECT_EQ(Read("Full.old.txt"), "head\none\n1234567890\n");
    EXPECT_EQ(Read("Full.txt"), "head\n\n");
    log.DoWriteLine(WString(30, L'x'));
    EXPECT_EQ(Read("Full.old.txt"), "head\n\n");
    EXPECT_EQ(Read("Full.txt"), "head\n" + std::string(30, 'x') + "\n") << "a long line is not cut";
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
    EXPECT_TRUE(first.Wait());
    EXPECT_TRUE(second.Wait());
    EXPECT_EQ(CheckGeneration(Read("Shared.old.txt")), "");
}

/// A process with the given command line that does nothing until it is ended.
class IdleProgram
{
public:
    IdleProgram(const std::string& program, std::vector<std::string> arguments)
    {
        int started[2] = {-1, -1};
        if (pipe2(started, O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
        std::vector<char*> words(arguments.size() + 1); // the last one null
        std::ranges::transform(arguments, words.begin(), [](std::string& argument) { return argument.data(); });
        child.emplace([&] { return execv(program.c_str(), words.data()) == 0; });
        close(started[1]);
        char end = 0;
        [[maybe_unused]] const ssize_t count = read(started[0], &end, 1); // ends when the program has taken over
        close(started[0]);
    }
    int GetId() const { return child->GetId(); }

private:
    std::optional<ChildProcess> child;
};

TEST(ProcessTable, IsSearchedByNameAndCommandLine)
{
    const TemporaryFolder folder;
    const std::string program = folder.Path("InstrumentServerOfTheBench"); // longer than the 15 characters of a name
    std::filesystem::create_symlink("/bin/sleep", program);
    const std::string unique = std::to_string(getpid()) + "1";
    const IdleProgram first(program, {program, unique, "1"});
    const IdleProgram second("/bin/sleep", {program, unique, "2"});
    const std::wstring line = L"*/instrumentserver* " + std::wstring(unique.begin(), unique.end());
    const struct
    {
        const wchar_t* command;
        std::wstring commandLine;
        int id;
    } rows[] = {
        {L"InstrumentServerOfTheBench", line + L" ?", first.GetId()},
        {L"instrumentSERVERof*", line + L"*", first.GetId()},
        {L"InstrumentServe", line + L"*", -1},
        {L"sleep", line + L" 2", second.GetId()},
        {L"*", line + L" ?", first.GetId()}, // the lower of two ids, unless they have come around
        {L"*", line, -1},
        {L"sleep", line + L" 1", -1},
        {L"nosuchcommand*", L"*", -1},
    };
    ASSERT_LT(first.GetId(), second.GetId());
    for (const auto& row : rows)
        EXPECT_EQ(System::GetMatchingProcess(row.command, row.commandLine.c_str()), row.id)
            << WString(row.command).ToUtf8() << ": " << WString(row.commandLine.c_str()).ToUtf8();
    EXPECT_GT(System::GetMatchingProcess(L"instrumentserverof*bench", nullptr), 0);
    EXPECT_EQ(System::GetMatchingProcess(L"nosuchcommand*", nullptr), -1);
}
