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
    const char* rows[][2] = {{"absent/Usage.db", ": No such file or directory"}, {".", ": Not a regular file"}};
    for (const auto& [name, reason] : rows) {
        usage.Open(path);
        EXPECT_EQ(GetThrown([&, name = name] { usage.Open(folder.Path(name)); }),
            "0:1:10 File error: " + folder.Path(name) + reason);
        EXPECT_FALSE(usage.Increment(L"X") || usage.Set(L"X", 1) || usage.TryDelete(L"X"));
        EXPECT_EQ(Get(L"X"), -1);
        WStringArray names = {L"old"};
        usage.GetNames(names);
        EXPECT_TRUE(names.IsEmpty());
    }
}

TEST_F(UsageCounters, ADamagedFileIsKeptAsideAndCountingGoesOn)
{
    namespace fs = std::filesystem;
    const auto flip = [&](std::size_t at) {
        std::string bytes = folder.Read("real.db");
        bytes.at(at) ^= 1;
        folder.Write("real.db", bytes);
    };
    const std::pair<std::function<void()>, const char*> rows[] = {{[] {}, ""},
        {[&] { folder.Write("real.db", ""); }, "empty"}, {[&] { flip(0); }, "damaged"},
        {[&] {
             flip(18);
             flip(19);
         },
            "damaged"},
        {[&] { folder.Write("real.db", "This is no database, however long the text of this file may be.\n"); },
            "damaged"},
        {[&] { flip(folder.Read("real.db").find("tablecounters") + 7); }, "damaged"},
        {[&] { fs::resize_file(path, fs::file_size(path) / 2); }, "damaged"}};
    const std::string real = folder.Path("real.db");
    fs::create_symlink("real.db", path);
    for (const auto& [damage, what] : rows) {
        for (const char* ending : {"", ".damaged1"})
            fs::remove(real + ending);
        usage.Open(path);
        usage.Set(L"System.OnTime", 7);
        usage.Open(folder.Path("Other.db"));
        damage();
        const bool isSound = what[0] == '\0';
        EXPECT_EQ(usage.Open(path).ToUtf8(),
            isSound ? "" : real + ": " + what + "; it is kept as real.db.damaged1, and a new one is begun");
        EXPECT_EQ(fs::exists(real + ".damaged1"), !isSound);
        EXPECT_TRUE(usage.Increment(L"System.OnTime"));
        EXPECT_EQ(usage.Open(path), L"") << "it is said once";
        EXPECT_EQ(Get(L"System.OnTime"), isSound ? 8 : 1) << what;
    }
    fs::remove(real + ".damaged1");
    folder.Write("next", "This is no database, however long the text of this file may be.\n");
    fs::rename(folder.Path("next"), real); // while the counters are open
    EXPECT_TRUE(usage.Increment(L"System.OnTime"));
    EXPECT_EQ(usage.TakeReport().ToUtf8(), real + ": damaged; it is kept as real.db.damaged1, and a new one is begun");
    EXPECT_EQ(usage.TakeReport(), L"");
    EXPECT_TRUE(fs::is_symlink(path));
    EXPECT_FALSE(fs::exists(real + ".new"));
}

TEST_F(UsageCounters, ARowThatAnotherProgramWroteIsLeftOut)
{
    usage.Open(path);
    usage.Set(L"Odd", 1);
    usage.Set(L"Süß", 2);
    usage.Set(L"TÜR", 7);
    usage.Open(folder.Path("Other.db"));
    std::string bytes = folder.Read("Usage.db");
    bytes.at(bytes.find("odd")) = 'O';
    bytes.at(bytes.rfind("Süß")) = 'T';
    folder.Write("Usage.db", bytes);
    EXPECT_EQ(
        usage.Open(path).ToUtf8(), path + ": the counter Odd (and 1 more) cannot be understood, and is left as it is");
    WStringArray names;
    usage.GetNames(names);
    EXPECT_EQ(Join(names), "TÜR");
    EXPECT_EQ(Get(L"Odd"), -1);
    EXPECT_TRUE(usage.Increment(L"Odd"));
    EXPECT_EQ(Get(L"Odd"), 1);
}

TEST_F(UsageCounters, AFileThatTakesThePlaceOfAnotherIsFollowed)
{
    usage.Open(path);
    usage.Set(L"X", 1);
    std::filesystem::rename(path, folder.Path("aside"));
    usage.Count(L"X");
    EXPECT_TRUE(usage.Set(L"Y", 2));
    UsageLog other;
    EXPECT_EQ(other.Open(path), L"");
    int value = 0;
    EXPECT_TRUE(other.TryGetUsageValue(L"Y", value) && value == 2);
    EXPECT_EQ(Get(L"X"), 1) << "what was gathered comes along";

    std::filesystem::remove_all(folder.GetPath());
    EXPECT_FALSE(usage.Set(L"Y", 3));
    EXPECT_EQ(usage.GetFault().ToUtf8(), "File error: " + path + ": No such file or directory");
    EXPECT_EQ(Get(L"Y"), 2) << "what was read can be read still";
}

TEST_F(UsageCounters, WhoMayOnlyReadSeesWhatIsWrittenLater)
{
    EXPECT_TRUE(RunUnprivileged([this] {
        const TemporaryFolder own;
        const std::string file = own.Path("Usage.db");
        UsageLog owner;
        const auto set = [&](long long value) {
            owner.Open(file);
            return owner.Set(L"X", value);
        };
        set(1);
        owner.Open(own.Path("Other.db")); // which ends the journal
        std::filesystem::permissions(file, std::filesystem::perms(0444));
        usage.Open(file);
        const bool isReadAlone = Get(L"X") == 1 && !usage.Set(L"X", 5);
        std::filesystem::permissions(file, std::filesystem::perms(0644));
        const bool isSeen = set(2) && Get(L"X") == 2 && set(3) && Get(L"X") == 3;
        owner.Open(own.Path("Other.db"));
        return isReadAlone && isSeen && Get(L"X") == 3 && set(4) && Get(L"X") == 4;
    }));
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
