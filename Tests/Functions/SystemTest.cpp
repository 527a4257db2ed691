#include "Services/System.h"
#include "Instrument/OS9EventManager.h"
#include "Support/Expressions.h"
#include "Support/TemporaryFolder.h"

#include <sys/prctl.h>
#include <unistd.h>

TEST(SystemFunctions, GetStatusReadsByType)
{
    StatusTable& status = System::status;
    status.TryAdd(L"UnitTest.Bool", ST_Bool, L"true");
    status.TryAdd(L"UnitTest.Double", ST_Double, L"2.50");
    status.TryAdd(L"UnitTest.Int", ST_Int, L"-2147483648");
    status.TryAdd(L"UnitTest.UInt", ST_UInt, L"7");
    status.TryAdd(L"UnitTest.Counter", ST_UInt64, L"2147483647");
    status.TryAdd(L"UnitTest.Text", ST_String, L"12");
    status.TryAdd(L"UnitTest.Code", ST_ExitCode, L"1043:505:133");
    status.TryAdd(L"UnitTest.Formatted", ST_Formatted, L"%S{UnitTest.UInt} of %S{UnitTest.Text}");
    CheckExpressions({
        {R"(GetStatus("UnitTest.Bool"))", "TRUE"},
        {R"(GetStatus("unittest.double", "x"))", "2.5"},
        {R"(GetStatus("UnitTest.Int"))", "-2147483648"},
        {R"(GetStatus("UnitTest.UInt"))", "7"},
        {R"(GetStatus("UnitTest.Counter"))", "2147483647"},
        {R"(GetStatus("UnitTest.Text"))", "'12'"},
        {R"(GetStatus("UnitTest.Code"))", "'1043:505:133'"},
        {R"(GetStatus("UnitTest.Formatted"))", "'7 of 12'"},
        {R"(GetStatus("UnitTest.UInt", 1/0))", "7"},
        {R"(GetStatus("UnitTest.None", ""))", "''"},
        {R"(5/GetStatus("UnitTest.None", 0))", "133 Divide by zero @12"},
        {R"(GetStatus("UnitTest.None", 1/0))", "133 Divide by zero @30"},
        {R"(GetStatus("UnitTest.None"))", "118 Status value not found @10"},
        {R"(GetStatus("a", "b", "c"))", "117 GetStatus requires 1 or 2 parameters @21"},
        {"GetStatus(5)", "8 Type mismatch @11"},
    });
}

TEST(SystemFunctions, GetStatusOfUnreadableItems)
{
    StatusTable& status = System::status;
    const auto live = [&](const wchar_t* name, StatusType type) { status.AddLive(name, type, [] { return L"?"; }); };
    live(L"UnitTest.BadBool", ST_Bool);
    live(L"UnitTest.BadDouble", ST_Double);
    live(L"UnitTest.BadInt", ST_Int);
    status.TryAdd(L"UnitTest.Above", ST_UInt, L"2147483648");
    status.TryAdd(L"UnitTest.Circle", ST_Formatted, L"%S{UnitTest.Circle}");
    CheckExpressions({
        {R"(GetStatus("UnitTest.BadBool", true))", "119 Failed to fetch status boolean @10"},
        {R"(GetStatus("UnitTest.BadDouble"))", "119 Failed to fetch status double @10"},
        {R"(GetStatus("UnitTest.BadInt"))", "119 Failed to fetch status integer @10"},
        {R"(GetStatus("UnitTest.Above"))", "119 Failed to fetch status integer @10"},
        {R"(GetStatus("UnitTest.Circle"))", "119 Failed to fetch status formatted string @10"},
    });
}

TEST(SystemFunctions, GetUsage)
{
    const TemporaryFolder folder;
    System::usage.Open(folder.Path("Usage.db"));
    System::usage.Set(L"System.OnTime", 73);
    CheckExpressions({
        {R"(GetUsage("System.OnTime", 0))", "73"},
        {R"(GetUsage("System.OnTime", 1/0))", "73"},
        {R"(GetUsage("No.Such", 0))", "0"},
        {R"(GetUsage("No.Such", kaka))", "48 kaka @21"},
        {R"(5/GetUsage("No.Such", 0))", "133 Divide by zero @11"},
        {R"(GetUsage("No.Such"))", "137 Usage value not found @9"},
        {R"(GetUsage("a", 1, 2))", "136 GetUsage requires 1 or 2 parameters @18"},
        {"GetUsage(true)", "8 Type mismatch @10"},
    });
}

TEST(SystemFunctions, GetEnv)
{
    Environment environment;
    ExpressionEvaluator evaluator(true, environment, nullptr, L"GetEnv", 0);
    EXPECT_EQ(Outcome(evaluator, R"(GetEnv("Count", 0))"), "0");
    environment.SetString(L"Count", L"7.50");
    environment.SetString(L"Truth", L"TRUE");
    environment.SetString(L"Name", L"7 apples");
    CheckExpressions(evaluator,
        {
            {R"(GetEnv("Count", 0))", "7.5"},
            {R"(GetEnv("count", 1/0))", "7.5"},
            {R"(GetEnv("Truth", 0))", "TRUE"},
            {R"(GetEnv("Name", 0))", "'7 apples'"},
            {R"(5/GetEnv("None", 0))", "133 Divide by zero @9"},
            {R"(GetEnv("None", 1/0))", "133 Divide by zero @18"},
            {"GetEnv(1, 2)", "8 Type mismatch @8"},
        });
}

TEST(SystemFunctions, GetEvent)
{
    const std::string name = "UnitTest." + std::to_string(getpid());
    const WString wideName = WString::FromUtf8(name);
    ASSERT_TRUE(OS9EventManager::TryCreate(wideName, -5));
    EXPECT_EQ(Outcome("GetEvent(\"" + name + "\")"), "-5");
    EXPECT_EQ(OS9EventManager::GetReferenceCount(wideName), 0);
    EXPECT_TRUE(OS9EventManager::TryDelete(wideName));
    EXPECT_EQ(Outcome("1+GetEvent(\"" + name + "\")"), "512 OS9Event not found @11");
}

TEST(SystemFunctions, Processes)
{
    char formerName[16] = {};
    prctl(PR_GET_NAME, formerName);
    const std::string name = "unit" + std::to_string(getpid()); // of this very process, and no other
    prctl(PR_SET_NAME, name.c_str());
    CheckExpressions({
        {"GetProcId(\"" + name + "\")", std::to_string(getpid())},
        {"GetProcId(\"UNIT?*" + name.substr(5) + "\", \"?*\")", std::to_string(getpid())},
        {"GetProcId(\"" + name + "\", \"no such line\")", "-1"},
        {"IsRunning(\"" + name + "\", \"?*\")", "TRUE"},
        {"IsRunning(\"" + name + "\", \"no such line\")", "FALSE"},
    });
    prctl(PR_SET_NAME, formerName);
    CheckExpressions({
        {"IsRunning(\"" + name + "\")", "FALSE"},
        {R"(GetProcId("nosuchcommand*"))", "-1"},
        {R"(GetProcId("a", "b", "c"))", "25 GetProcId/IsRunning requires 1 or 2 parameters @21"},
        {R"(IsRunning(1))", "8 Type mismatch @11"},
        {R"(IsRunning("a", 1))", "8 Type mismatch @16"},
    });
}

TEST(SystemFunctions, FileSizes)
{
    const TemporaryFolder folder;
    const std::string large = folder.Write("large", "");
    std::filesystem::resize_file(large, 5'000'000'000); // a hole: it takes no room
    EXPECT_EQ(Outcome("FileExist(\"" + large + "\")"), "TRUE");
    EXPECT_EQ(Outcome("FileSize(\"" + large + "\")"), "5000000000");
    EXPECT_EQ(Outcome("FileSize(\"" + folder.Write("ä b", "123") + "\")"), "3");
}

TEST(SystemFunctions, FileCrcAndChecksum)
{
    using namespace std::string_literals;
    struct Row
    {
        std::string bytes;
        const char* crc;
        const char* checksum;
    };
    const std::string ones(2 * 4096, '\x01'); // 2048 words of 0x01010101
    const TemporaryFolder folder;
    for (const Row& row : {
             Row{"", "0", "4294967295"},
             Row{"123456789", "3421780262", "2476054368"},
             Row{"\1\0\0\0\2"s, "357351297", "4294967292"},
             Row{"\xFF\xFF\xFF\xFF\2\0\0\0"s, "1442199412", "4294967294"}, // the sum wraps
             Row{ones, "1286701566", "4160223231"},
             Row{ones + '\1', "4283216257", "4160223230"},
         }) {
        const std::string path = folder.Write("file", row.bytes);
        EXPECT_EQ(Outcome("FileCrc(\"" + path + "\")"), row.crc) << row.bytes.size() << " bytes";
        EXPECT_EQ(Outcome("FileZynqChecksum(\"" + path + "\")"), row.checksum) << row.bytes.size() << " bytes";
    }
}
