#include "Services/Abort.h"
#include "Services/Clock.h"
#include "Services/DateTime.h"
#include "Services/File.h"
#include "Services/Rand.h"
#include "Text/HostError.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <climits>
#include <filesystem>
#include <set>
#include <thread>

#include <sys/stat.h>

namespace fs = std::filesystem;

TEST(Abort, EndsWhatChecksIt)
{
    EXPECT_NO_THROW(Abort::ThrowIfRequested());
    Abort::Request();
    EXPECT_TRUE(Abort::IsRequested());
    try {
        Abort::ThrowIfRequested();
        ADD_FAILURE() << "went on";
    } catch (const ExitCode& code) {
        EXPECT_EQ(code, ExitCode(0, 1, 4));
    }
    Clock::Get().Sleep(UINT_MAX); // does not wait
    Abort::Clear();
    EXPECT_FALSE(Abort::IsRequested());
}

TEST(Clock, SleepsUntilItsTimeOrAnAbort)
{
    const auto start = std::chrono::steady_clock::now();
    Clock::Get().Sleep(60);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));

    std::thread other([] { Abort::Request(); });
    Clock::Get().Sleep(UINT_MAX);
    other.join();
    Abort::Clear();
}

TEST(Clock, GivesWayToAnother)
{
    class StoppedClock : public Clock
    {
    public:
        unsigned int GetTickCount() override { return ticks; }
        void Sleep(unsigned int milliseconds) override { ticks += milliseconds; }

    private:
        unsigned int ticks = UINT_MAX - 9;
    } stopped;
    Clock::Replace(&stopped);
    const unsigned int start = GetTickCount();
    Clock::Get().Sleep(1000);
    EXPECT_EQ(GetTickCount() - start, 1000u);
    Clock::Replace(nullptr);
    EXPECT_NE(&Clock::Get(), &stopped);
}

TEST(Rand, DrawsTheSameOnEveryPlatform)
{
    Rand random(42);
    std::mt19937_64 engine(42);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(random.Next32(-8, 7), static_cast<int>(engine() >> 60) - 8);
        EXPECT_EQ(random.Next(), static_cast<double>(engine() >> 11) / 9007199254740992.0);
    }
    random.Seed(42);
    Rand same(42);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(random.Next32(1, 1000), same.Next32(1, 1000));
}

TEST(Rand, DrawsUniformlyWithBothBounds)
{
    const std::pair<int, int> ranges[] = {{1, 6}, {-1, 1}, {INT_MIN, INT_MAX}, {INT_MIN, 0}, {-1, INT_MAX},
        {INT_MIN, INT_MIN + 0x5FFF'FFFF}, {INT_MAX - 2, INT_MAX}};
    Rand random(7);
    for (const auto& [lower, upper] : ranges) {
        std::array<int, 3> thirds{};
        for (int i = 0; i < 30'000; ++i) {
            const int value = random.Next32(lower, upper);
            EXPECT_TRUE(value >= lower && value <= upper);
            ++thirds[static_cast<std::size_t>(
                (static_cast<long long>(value) - lower) * 3 / (static_cast<long long>(upper) - lower + 1))];
        }
        for (const int count : thirds)
            EXPECT_NEAR(count, 10'000, 400) << lower << ", " << upper;
    }
    EXPECT_EQ(random.Next32(INT_MIN, INT_MIN), INT_MIN);
    EXPECT_EQ(random.Next32(INT_MAX, INT_MAX), INT_MAX);
    EXPECT_NE(Rand().Next(), Rand().Next());
}

TEST(DateTime, CountsDaysFrom1899)
{
    const std::pair<int, int> rows[] = {{18991230, 0}, {18991231, 1}, {18991229, -1}, {19000101, 2}, {19000301, 61},
        {19700101, 25569}, {20000229, 36585}, {20261121, 46347}, {16010101, -109205}, {99991231, 2958465}};
    for (const auto& [date, days] : rows) {
        DateTime value;
        EXPECT_TRUE(value.TrySetValue(date, 235959));
        EXPECT_EQ(value.ToDays(), days) << date;
        EXPECT_EQ(value.ToTimeInt(), 235959);
        EXPECT_EQ(DateTime::FromDays(days).ToDateInt(), date);
    }
    EXPECT_EQ(DateTime().ToDateInt(), 16010101);
}

TEST(DateTime, RefusesWhatDoesNotExist)
{
    const std::pair<int, int> rows[] = {{0, 0}, {20230231, 0}, {19000229, 0}, {20230001, 0}, {20231301, 0},
        {20230100, 0}, {16001231, 0}, {100000101, 0}, {-20230101, 0}, {INT_MIN, 0}, {INT_MAX, 0}, {20230101, 240000},
        {20230101, 6000}, {20230101, 60}, {20230101, -1}, {20230101, INT_MAX}};
    DateTime value;
    EXPECT_TRUE(value.TrySetValue(20240229, 10203));
    for (const auto& [date, time] : rows)
        EXPECT_FALSE(value.TrySetValue(date, time)) << date << ' ' << time;
    EXPECT_EQ(value.ToDateInt(), 20240229);
    EXPECT_EQ(value.ToTimeInt(), 10203);

    EXPECT_TRUE(DateTime::IsDaysValid(-109205) && DateTime::IsDaysValid(2958465));
    EXPECT_FALSE(DateTime::IsDaysValid(-109206) || DateTime::IsDaysValid(2958466) || DateTime::IsDaysValid(INT_MIN));
    EXPECT_EQ(DateTime::FromDays(INT_MAX).ToDateInt(), 99991231);
}

TEST(DateTime, GoesForthAndBack)
{
    DateTime value;
    for (int days = -109205, previous = 0; DateTime::IsDaysValid(days); ++days) {
        const int date = DateTime::FromDays(days).ToDateInt();
        ASSERT_GT(date, previous);
        ASSERT_TRUE(value.TrySetValue(date, 0)) << date;
        ASSERT_EQ(value.ToDays(), days);
        previous = date;
    }
    EXPECT_GT(DateTime::Now().ToDateInt(), 20260101);
}

/// A folder of its own for each test.
class FileTest : public testing::Test
{
protected:
    FileTest()
    {
        std::string pattern = testing::TempDir() + "filesXXXXXX";
        EXPECT_TRUE(mkdtemp(pattern.data()));
        folder = pattern;
    }
    ~FileTest() override { fs::remove_all(folder); }

    WString Name(const wchar_t* name) const { return WString::FromUtf8(folder.string()) + L"/" + name; }

    void Write(const wchar_t* name, FileOpenMode mode, std::string_view bytes) const
    {
        File(Name(name), mode, FileAccessMode::Write).Write(bytes.data(), bytes.size());
    }

    std::string Read(const wchar_t* name, unsigned int blockSize) const
    {
        std::string result;
        File file(Name(name), FileOpenMode::OpenExisting, FileAccessMode::Read);
        Buffer block(blockSize);
        for (file.Read(block); block.GetLength() > 0; file.Read(block)) {
            EXPECT_LE(block.GetLength(), blockSize);
            result.append(block.GetData(), block.GetData() + block.GetLength());
        }
        return result;
    }

    /// The message of what opening for reading, or for writing, throws; without the folder.
    std::string Refusal(const WString& name, FileAccessMode access = FileAccessMode::Read) const
    {
        try {
            File(name, FileOpenMode::OpenExisting, access).Write("x", 1);
        } catch (const HostException& error) {
            EXPECT_EQ(static_cast<const ExitCode&>(error), ExitCode(0, 1, 10));
            WString message = error.GetMessage();
            message.Replace(Name(L""), L"", false);
            return message.ToUtf8();
        }
        return "opened";
    }

    fs::path folder;
};

TEST_F(FileTest, WritesAndReads)
{
    const wchar_t* name = L"\u00E5 %s%n.bin";
    EXPECT_FALSE(File::Exists(Name(name)));
    Write(name, FileOpenMode::Create, std::string_view("0123\0abc", 8));
    EXPECT_TRUE(File::Exists(Name(name)));
    EXPECT_TRUE(fs::exists(folder / "\xC3\xA5 %s%n.bin"));
    Write(name, FileOpenMode::Append, "XY");
    Write(name, FileOpenMode::OpenExisting, "ab");
    for (const unsigned int blockSize : {1u, 3u, 10u, 4096u})
        EXPECT_EQ(Read(name, blockSize), std::string("ab23\0abcXY", 10));
    Write(name, FileOpenMode::Create, "");
    EXPECT_EQ(Read(name, 10), "");
}

TEST_F(FileTest, KnowsSizesBeyondFourGiB)
{
    Write(L"sparse", FileOpenMode::Create, "x");
    fs::resize_file(folder / "sparse", 5'000'000'001);
    const File file(Name(L"sparse"), FileOpenMode::OpenExisting, FileAccessMode::Read);
    EXPECT_EQ(file.GetFileSize(), 5'000'000'001u);
}

TEST_F(FileTest, RefusesWithTheReason)
{
    fs::create_directory(folder / "folder");
    ASSERT_EQ(mkfifo((folder / "fifo").c_str(), 0600), 0);
    EXPECT_EQ(Refusal(Name(L"none%s")), "File error: none%s: No such file or directory");
    EXPECT_EQ(Refusal(Name(L"folder")), "File error: folder: Is a directory");
    EXPECT_EQ(Refusal(Name(L"fifo")), "File error: fifo: Not a regular file");
    EXPECT_EQ(Refusal(L"/dev/zero"), "File error: /dev/zero: Not a regular file");
    EXPECT_EQ(Refusal(Name(L"folder"), FileAccessMode::Write), "File error: folder: Is a directory");
    EXPECT_EQ(Refusal(Name(L"fifo"), FileAccessMode::Write), "File error: fifo: No such device or address");
    EXPECT_EQ(Refusal(L"/dev/full", FileAccessMode::Write), "File error: /dev/full: No space left on device");
    EXPECT_TRUE(File::Exists(Name(L"folder")));
    EXPECT_FALSE(File::Exists(L""));
}

TEST_F(FileTest, ClosesWhatItOpened)
{
    const auto countOpen = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = countOpen();
    EXPECT_EQ(Refusal(L"/dev/null"), "File error: /dev/null: Not a regular file");
    Write(L"a", FileOpenMode::Create, "x");
    File file(Name(L"a"), FileOpenMode::OpenExisting, FileAccessMode::Read);
    file.Close();
    EXPECT_EQ(countOpen(), before);
    Buffer block(1);
    EXPECT_THROW(file.Read(block), HostException);
    EXPECT_THROW(file.GetFileSize(), HostException);
}

TEST_F(FileTest, ComputesTheCrc)
{
    Write(L"digits", FileOpenMode::Create, "123456789");
    Write(L"empty", FileOpenMode::Create, "");
    Write(L"long", FileOpenMode::Create, std::string(200'000, 'a'));
    const std::pair<const wchar_t*, std::uint32_t> rows[] = {
        {L"digits", 0xCBF43926}, {L"empty", 0}, {L"long", 0xE069539B}};
    for (const auto& [name, expected] : rows) {
        std::uint32_t crc = 1;
        EXPECT_TRUE(File::GetCrc(Name(name), crc, true));
        EXPECT_EQ(crc, expected) << WString(name).ToUtf8();
    }
    std::uint32_t crc = 1;
    EXPECT_FALSE(File::GetCrc(Name(L"none"), crc, false));
    EXPECT_THROW(File::GetCrc(Name(L"none"), crc, true), HostException);
    Abort::Request();
    EXPECT_THROW(File::GetCrc(Name(L"long"), crc, false), HostException);
    Abort::Clear();
    EXPECT_EQ(crc, 1u);
}
