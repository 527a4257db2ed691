#include "Services/Clock.h"
#include "Services/DateTime.h"
#include "Services/File.h"
#include "Services/Rand.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"
#include "Text/Abort.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <climits>
#include <thread>

#include <sys/stat.h>

namespace fs = std::filesystem;

TEST(Clock, SleepsUntilItsTimeOrAnAbort)
{
    const auto start = std::chrono::steady_clock::now();
    Clock::Get().Sleep(60);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60));
    EXPECT_NO_THROW(Abort::ThrowIfRequested());

    std::thread other([] { Abort::Request(); });
    Clock::Get().Sleep(UINT_MAX);
    other.join();
    EXPECT_TRUE(Abort::IsRequested());
    EXPECT_EQ(GetThrown([] { Abort::ThrowIfRequested(); }), "0:1:4 Aborted");
    Abort::Clear();
    EXPECT_FALSE(Abort::IsRequested());
}

TEST(Rand, DrawsTheSameOnEveryPlatform)
{
    Rand random(42);
    std::mt19937_64 engine(42);
    for (int i = 0; i < 100; ++i) {
        EXPECT_EQ(random.Next32(-8, 7), static_cast<int>(engine() >> 60) - 8);
        EXPECT_EQ(random.Next(), static_cast<double>(engine() >> 11) / 9007199254740992.0);
    }
    EXPECT_NE(Rand().Next(), Rand().Next());
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
    for (const int only : {INT_MIN, INT_MAX})
        EXPECT_EQ(random.Next32(only, only), only);
}

TEST(DateTime, CountsDaysFrom1899)
{
    DateTime value;
    for (int days = -109205, previous = 0; DateTime::IsDaysValid(days); ++days) {
        const int date = DateTime::FromDays(days).ToDateInt();
        ASSERT_GT(date, previous);
        ASSERT_TRUE(value.TrySetValue(date, 235959)) << date;
        ASSERT_EQ(value.ToDays(), days);
        previous = date;
    }
    EXPECT_EQ(value.ToDateInt(), 99991231);
    EXPECT_EQ(value.ToTimeInt(), 235959);
    EXPECT_GT(DateTime::Now().ToDateInt(), 20260101);
}

TEST(DateTime, RefusesWhatDoesNotExist)
{
    DateTime value;
    EXPECT_TRUE(value.TrySetValue(20240229, 10203));
    for (const int time : {240000, 6000, 60, -1, INT_MAX})
        EXPECT_FALSE(value.TrySetValue(20230101, time)) << time;
    EXPECT_EQ(value.ToDateInt(), 20240229);
    EXPECT_EQ(value.ToTimeInt(), 10203);
    EXPECT_FALSE(DateTime::IsDaysValid(-109206) || DateTime::IsDaysValid(2958466) || DateTime::IsDaysValid(INT_MIN));
    EXPECT_EQ(DateTime::FromDays(INT_MAX).ToDateInt(), 99991231);
}

class FileTest : public testing::Test
{
protected:
    TemporaryFolder folder;

    WString Name(const wchar_t* name) const { return WString::FromUtf8(folder.GetPath()) + L"/" + name; }
    void Write(const wchar_t* name, FileOpenMode mode, std::string_view bytes) const
    {
        File(Name(name), mode, FileAccessMode::Write).Write(bytes.data(), bytes.size());
    }
    /// What opening for reading, or for writing, throws.
    static std::string Refusal(const WString& name, FileAccessMode access = FileAccessMode::Read)
    {
        return GetThrown([&] { File(name, FileOpenMode::OpenExisting, access).Write("x", 1); });
    }
};

TEST_F(FileTest, WritesAndReads)
{
    const wchar_t* name = L"\u00E5 %s%n.bin";
    Write(name, FileOpenMode::Create, std::string_view("0123\0abc", 8));
    Write(name, FileOpenMode::Append, "XY");
    Write(name, FileOpenMode::OpenExisting, "ab");
    EXPECT_EQ(folder.Read("\xC3\xA5 %s%n.bin"), std::string("ab23\0abcXY", 10));
    File file(Name(name), FileOpenMode::OpenExisting, FileAccessMode::Read);
    Buffer block(4);
    for (const std::string& expected :
        {std::string("ab23"), std::string("\0abc", 4), std::string("XY"), std::string()}) {
        file.Read(block);
        EXPECT_EQ(std::string(block.GetData(), block.GetData() + block.GetLength()), expected);
    }
    Write(name, FileOpenMode::Create, "");
    EXPECT_EQ(file.GetFileSize(), 0u);
}

TEST_F(FileTest, RefusesWithTheReason)
{
    fs::create_directory(folder.Path("folder"));
    ASSERT_EQ(mkfifo(folder.Path("fifo").c_str(), 0600), 0);
    const std::string inFolder = "0:1:10 File error: " + folder.GetPath();
    EXPECT_EQ(Refusal(Name(L"none%s")), inFolder + "/none%s: No such file or directory");
    EXPECT_EQ(Refusal(Name(L"folder")), inFolder + "/folder: Is a directory");
    EXPECT_EQ(Refusal(Name(L"fifo")), inFolder + "/fifo: Not a regular file");
    EXPECT_EQ(Refusal(L"/dev/zero"), "0:1:10 File error: /dev/zero: Not a regular file");
    EXPECT_EQ(Refusal(Name(L"folder"), FileAccessMode::Write), inFolder + "/folder: Is a directory");
    EXPECT_EQ(Refusal(Name(L"fifo"), FileAccessMode::Write), inFolder + "/fifo: No such device or address");
    EXPECT_EQ(Refusal(L"/dev/full", FileAccessMode::Write), "0:1:10 File error: /dev/full: No space left on device");
    EXPECT_TRUE(File::Exists(Name(L"folder")));
    EXPECT_FALSE(File::Exists(L"") || File::Exists(Name(L"none")));
}

TEST_F(FileTest, ClosesWhatItOpened)
{
    const auto countOpen = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = countOpen();
    EXPECT_NE(Refusal(L"/dev/null"), "");
    Write(L"a", FileOpenMode::Create, "x");
    File file(Name(L"a"), FileOpenMode::OpenExisting, FileAccessMode::Read);
    file.Close();
    EXPECT_EQ(countOpen(), before);
    Buffer block(1);
    EXPECT_THROW(file.Read(block), HostException);
    EXPECT_THROW(file.GetFileSize(), HostException);
}

TEST_F(FileTest, AnAbortEndsTheCrc)
{
    Write(L"file", FileOpenMode::Create, std::string(200'000, 'a'));
    std::uint32_t crc = 1;
    EXPECT_FALSE(File::GetCrc(Name(L"none"), crc, false));
    EXPECT_THROW(File::GetCrc(Name(L"none"), crc, true), HostException);
    Abort::Request();
    EXPECT_EQ(GetThrown([&] { File::GetCrc(Name(L"file"), crc, false); }), "0:1:4 Aborted");
    Abort::Clear();
    EXPECT_EQ(crc, 1u);
    EXPECT_TRUE(File::GetCrc(Name(L"file"), crc, true));
    EXPECT_EQ(crc, 0xE069539B);
}
