#include "Instrument/System.h"
#include "Services/FileDescriptor.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"
#include "Text/Abort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

/// The files that several shells, and an editor, use at once.
class SharedData : public testing::Test
{
protected:
    TemporaryFolder folder;
    const std::string path = folder.Write("Data.ini", "[Items]\nX=int:1\nY=int:1\n");
    StatusTable status;
    ConfigFileData config;
};

TEST_F(SharedData, SettingsOfProcessesAtOnceAreAllKeptAndNeverTorn)
{
    const auto setMany = [this](wchar_t name) {
        status.Load(path);
        config.Load(path);
        for (int i = 0; i < 20; ++i) {
            status.TrySet(WString::Format(L"%c%d", name, i), L"1");
            status.Save();
            config.SetString(L"Config", WString::Format(L"%c%d", name, i), L"1");
            config.Save();
        }
        return true;
    };
    ChildProcess first([&] { return setMany(L'P'); });
    ChildProcess second([&] { return setMany(L'Q'); });
    for (int i = 0; i < 200; ++i) {
        const std::string text = folder.Read("Data.ini");
        ASSERT_TRUE(text.starts_with("[Items]\nX=int:1\n") && text.ends_with("1\n")) << text;
    }
    EXPECT_TRUE(first.Wait() && second.Wait());
    EXPECT_EQ(std::ranges::count(folder.Read("Data.ini"), '='), 2 + 2 * 2 * 20);
}

TEST_F(SharedData, WhatAnEditorRemovedStaysRemoved)
{
    status.Load(path);
    status.AddLive(L"Live", ST_Int, [] { return WString(L"1"); });
    folder.Write("Data.ini", "[Items]\nX=int:1\n");
    status.Refresh();
    EXPECT_TRUE(status.TrySet(L"Z", L"2"));
    status.Save();
    EXPECT_EQ(folder.Read("Data.ini"), "[Items]\nX=int:1\nZ=int:2\n");
    EXPECT_FALSE(status.TrySetAfter(L"Live", L"2", 1) || status.TrySetAfter(L"X", L"text", 1));

    config.Load(path);
    EXPECT_TRUE(config.TryDelete(L"Items", L"X"));
    folder.Write("Data.ini", "[Items]\nX=int:1\nNew=int:3\n");
    config.Save();
    EXPECT_EQ(folder.Read("Data.ini"), "[Items]\nNew=int:3\n");
}

TEST_F(SharedData, AFullDiskCutsNoLineAndMakesNoChange)
{
    System::Start(folder.GetPath(), SOURCE_DIR "/Shell/Profile");
    LogFile log(L"", L"Log", 1000);
    log.SetEnabled(true);
    log.DoWriteLine(L"12345");
    UsageLog usage;
    usage.Open(folder.Path("Own.db"));
    usage.Set(L"X", 7);
    usage.Open(folder.Path("Other.db"));
    status.Load(path);
    EXPECT_TRUE(status.TrySet(L"X", L"2"));
    std::signal(SIGXFSZ, SIG_IGN); // a file beyond the limit is an error, as on a full disk
    const rlimit full = {8, RLIM_INFINITY};
    rlimit former;
    ASSERT_EQ(prlimit(0, RLIMIT_FSIZE, &full, &former), 0);
    log.DoWriteLine(L"6789");
    const std::string refusal = GetThrown([&] { status.Save(); });
    const std::string report = usage.Open(folder.Path("Own.db")).ToUtf8();
    const bool isSet = usage.Set(L"X", 8);
    ASSERT_EQ(prlimit(0, RLIMIT_FSIZE, &former, nullptr), 0);
    EXPECT_EQ(folder.Read("Log.txt") + refusal, "12345\n0:1:10 File error: " + path + ": File too large");
    int number = 0;
    EXPECT_TRUE(status.TryGetInt(L"X", number, 1, 1));
    EXPECT_EQ(report, folder.Path("Own.db") + ": File too large; the counters can only be read");
    EXPECT_TRUE(!isSet && usage.GetFault() == L"File too large");
    EXPECT_TRUE(usage.TryGetUsageValue(L"X", number) && number == 7);
    EXPECT_TRUE(status.TrySet(L"Y", L"3"));
    status.Save();
    EXPECT_EQ(folder.Read("Data.ini"), "[Items]\nX=int:1\nY=int:3\n");
}

TEST_F(SharedData, LocksAndFifosHoldNobodyUp)
{
    System::Start(folder.GetPath(), SOURCE_DIR "/Shell/Profile");
    const FileDescriptor held[] = {FileDescriptor(open(folder.Path("Config.ini.lock").c_str(), O_RDONLY)),
        FileDescriptor(open(folder.Path("Held.txt").c_str(), O_RDONLY | O_CREAT, 0600))};
    EXPECT_TRUE(flock(held[0].Get(), LOCK_EX) == 0 && flock(held[1].Get(), LOCK_EX) == 0);
    ASSERT_EQ(mkfifo(folder.Path("Fifo.txt").c_str(), 0600), 0);
    for (const wchar_t* name : {L"Held", L"Fifo"}) {
        LogFile log(L"", name, 1000);
        log.SetEnabled(true);
        log.WriteLine(L"given up");
    }
    EXPECT_EQ(folder.Read("Held.txt"), "");
    EXPECT_EQ(GetThrown([&] { config.Load(folder.Path("Fifo.txt")); }),
        "0:1:10 File error: " + folder.Path("Fifo.txt") + ": Not a regular file");
    Abort::Request();
    EXPECT_EQ(GetThrown([] { System::config.Save(); }).substr(0, 5), "0:1:4");
    Abort::Clear();
}
