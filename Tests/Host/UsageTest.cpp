#include "Instrument/UsageLog.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <functional>
#include <thread>
#include <tuple>

class UsageCounters : public testing::Test
{
protected:
    TemporaryFolder folder;
    UsageLog usage;
    const std::string path = folder.Path("Usage.db");

    /// The counter, -1 when there is none.
    int Get(const wchar_t* name) const
    {
        int value = -1;
        usage.TryGetUsageValue(name, value);
        return value;
    }
    static void IncrementOften(UsageLog& log)
    {
        for (int i = 0; i < 400; ++i)
            log.Increment(L"Shared");
    }
};

TEST_F(UsageCounters, AreFoundInAnyCaseAndKeepTheirFirstSpelling)
{
    usage.Open(path);
    EXPECT_FALSE(usage.TryDelete(L"Türen"));
    EXPECT_TRUE(usage.Increment(L"Türen") && usage.Increment(L"TÜREN", 5) && usage.Increment(L"a'b\"; --", -3));
    EXPECT_TRUE(usage.Set(L"Lamp", 7) && usage.Set(L"LAMP", 8));
    usage.Open(path);
    WStringArray names;
    usage.GetNames(names);
    EXPECT_EQ(Join(names), "a'b\"; --\nLamp\nTüren");
    EXPECT_EQ(Get(L"türen"), 6);
    EXPECT_EQ(Get(L"A'B\"; --"), -3);
    EXPECT_EQ(Get(L"lamp"), 8);
    EXPECT_TRUE(usage.TryDelete(L"lamp"));
    EXPECT_EQ(Get(L"Lamp"), -1);
}

TEST_F(UsageCounters, SaturateForReadersAndNeverWrap)
{
    usage.Open(path);
    usage.Set(L"High", 2147483648LL);
    usage.Set(L"Low", -2147483649LL);
    EXPECT_EQ(Get(L"High"), INT_MAX);
    EXPECT_EQ(Get(L"Low"), INT_MIN);
    EXPECT_TRUE(usage.Increment(L"High", -INT_MAX));
    EXPECT_EQ(Get(L"High"), 1) << "the full count is kept";
    usage.Set(L"Full", LLONG_MAX);
    usage.Increment(L"Full");
    usage.Increment(L"Full", -LLONG_MAX);
    EXPECT_EQ(Get(L"Full"), 0) << "a sum beyond 64 bits changes nothing";
}

TEST_F(UsageCounters, CountsAreGatheredAndWrittenInOrder)
{
    ManualClock clock;
    UsageLog other;
    const auto getElsewhere = [&] {
        int value = -1;
        other.TryGetUsageValue(L"n", value);
        return value;
    };
    usage.Open(path);
    other.Open(path);
    usage.Count(L"n");
    clock.Sleep(99);
    usage.Count(L"n", 3);
    EXPECT_EQ(getElsewhere(), -1) << "for the next 100 ms";
    clock.Sleep(1);
    usage.WriteCountsIfDue();
    EXPECT_EQ(getElsewhere(), 4);
    usage.Count(L"N");
    EXPECT_EQ(Get(L"n"), 5) << "a read comes behind what is gathered";
    usage.Count(L"n", 100);
    other.Set(L"n", 10);
    usage.Set(L"n", 20);
    usage.Count(L"n");
    EXPECT_EQ(getElsewhere(), 20) << "so does a change";
    usage.WriteCounts();
    EXPECT_EQ(getElsewhere(), 21);
    usage.Count(L"n");
    other.Increment(L"n", 2);
    usage.Open(folder.Path("Other.db"));
    EXPECT_EQ(getElsewhere(), 24) << "and at the end all is written";
}

TEST_F(UsageCounters, FilesThatDoNotServeAreReportedAndNothingIsCounted)
{
    for (const char* name : {"absent/Usage.db", "."}) {
        usage.Open(path);
        EXPECT_EQ(GetThrown([&] { usage.Open(folder.Path(name)); }),
            "0:1:10 File error: " + folder.Path(name) + ": unable to open database file");
        EXPECT_FALSE(usage.Increment(L"X") || usage.Set(L"X", 1) || usage.TryDelete(L"X"));
        EXPECT_EQ(Get(L"X"), -1);
        WStringArray names = {L"old"};
        usage.GetNames(names);
        EXPECT_TRUE(names.IsEmpty());
    }
}

TEST_F(UsageCounters, ADamagedFileIsKeptAsideAndCountingGoesOn)
{
    constexpr std::size_t frame = 24 + 512;
    const auto flip = [&](const char* ending, std::size_t at) {
        std::string bytes = folder.Read(std::string("Usage.db") + ending);
        bytes.at(at) ^= 1;
        folder.Write(std::string("Usage.db") + ending, bytes);
    };
    // The last frame looks like what a process that was killed leaves.
    const std::tuple<std::function<void()>, const char*, int> rows[] = {{[] {}, "", 7},
        {[&] { flip("-wal", 32 + 5 * frame - 1); }, "", 6},
        {[&] { flip("-wal", 32 + 4 * frame - 1); }, "the counters are those from before the damage", 5},
        {[&] { flip("-wal", 32 + 3 * frame + 9); }, "the counters are those from before the damage", 5},
        {[&] { flip("-wal", 9); }, "the counters are those from before the damage", 2},
        {[&] { folder.Write("Usage.db", ""); }, "the counters are those from before the damage", -1},
        {[&] { flip("", 0); }, "a new one is begun", -1},
        {[&] {
             flip("", 18);
             flip("", 19);
         },
            "a new one is begun", -1},
        {[&] { folder.Write("Usage.db", "This is no database, however long the text of this file may be.\n"); },
            "a new one is begun", -1},
        {[&] {
             std::filesystem::remove(path + "-wal"); // which has that page anew
             flip("", folder.Read("Usage.db").rfind("system"));
         },
            "a new one is begun", -1},
        {[&] { flip("", folder.Read("Usage.db").find("tablecounters") + 7); }, "a new one is begun", -1}};
    for (const auto& [damage, outcome, value] : rows) {
        for (const char* ending : {"", "-wal", "-shm", ".damaged1", ".damaged1-wal", ".lock"})
            std::filesystem::remove(path + ending);
        EXPECT_TRUE(ChildProcess([&] {
            usage.Open(path);
            usage.Set(L"System.OnTime", 2);
            usage.Open(path); // all is in the file itself
            for (int i = 0; i < 5; ++i)
                usage.Increment(L"System.OnTime");
            return raise(SIGKILL) == 0;
        }).Wait() == false);
        damage();
        const std::string report =
            outcome[0] == '\0' ? "" : path + ": damaged; it is kept as Usage.db.damaged1, and " + outcome;
        EXPECT_EQ(usage.Open(path).ToUtf8(), report);
        EXPECT_EQ(Get(L"System.OnTime"), value) << report;
        EXPECT_EQ(std::filesystem::exists(path + ".damaged1"), !report.empty());
        EXPECT_TRUE(usage.Increment(L"System.OnTime"));
        EXPECT_EQ(usage.Open(path), L"") << "it is said once";
        EXPECT_EQ(Get(L"System.OnTime"), std::max(value, 0) + 1);
    }
}

TEST_F(UsageCounters, ProcessesAndThreadsThatCountAtOnceLoseNothing)
{
    const auto countAndDie = [&] {
        UsageLog mine;
        mine.Open(path);
        IncrementOften(mine);
        mine.Count(L"Shared", 50);
        mine.WriteCounts();
        return raise(SIGKILL) == 0; // the file keeps the lock and the journal of a process that is gone
    };
    ChildProcess first(countAndDie);
    ChildProcess second(countAndDie);
    EXPECT_FALSE(first.Wait() || second.Wait());
    usage.Open(path);
    EXPECT_EQ(Get(L"Shared"), 900);
    std::thread thread([&] { IncrementOften(usage); });
    IncrementOften(usage);
    thread.join();
    EXPECT_EQ(Get(L"Shared"), 1700);
}
