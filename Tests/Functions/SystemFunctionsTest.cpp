// The functions that look at the instrument and at the system. The rows of the files beside this one are evaluated
// with all of it set up: the data files of Profile, a usage value, variables, and files.

#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "NumberFormat.h"
#include "Support/ExpressionFile.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryFolder.h"

#include <sys/prctl.h>
#include <unistd.h>

namespace {
/// What the metadata say of the key: type and default.
std::string DescribeMetaData(const wchar_t* key)
{
    ConfigMetaData::Item item;
    if (!System::config.GetMetaData().TryGet(L"UnitTest", key, item))
        return "nothing";
    static const char* const types[] = {"", "Int", "Str", "Dbl", "UInt", "", "Bool"};
    const WString value = item.type == ConfigDataType::Str ? item.defaultText : DoubleToString(item.defaultNumber);
    return types[static_cast<int>(item.type)] + (" " + value.ToUtf8());
}

void StartSystem(const std::string& folder)
{
    System::Start(folder, SOURCE_DIR "/Tests/Functions/Profile");
    System::usage.Set(L"System.OnTime", 73);
    const std::pair<const wchar_t*, StatusType> unreadable[] = {
        {L"UnitTest.BadBool", ST_Bool}, {L"UnitTest.BadDouble", ST_Double}, {L"UnitTest.BadInt", ST_Int}};
    for (const auto& [name, type] : unreadable)
        System::status.AddLive(name, type, [] { return L"?"; });
}

void WriteFiles(const TemporaryFolder& folder)
{
    using namespace std::string_literals;
    const std::string ones(8192, '\x01'); // 2048 words of 0x01010101
    folder.Write("empty", "");
    folder.Write("ä b", "123456789");
    folder.Write("five bytes", "\1\0\0\0\2"s);
    folder.Write("sum wraps", "\xFF\xFF\xFF\xFF\2\0\0\0"s);
    folder.Write("ones", ones);
    folder.Write("ones and one", ones + '\1');
    std::filesystem::resize_file(folder.Write("large", ""), 5'000'000'000); // a hole: it takes no room
}
} // namespace

class SystemFunctions : public testing::Test
{
protected:
    SystemFunctions()
    {
        static const TemporaryFolder folder; // until the end of the process, which may write to it as long
        StartSystem(folder.GetPath());
        WriteFiles(folder);
        environment.SetString(L"Count", L"7.50");
        environment.SetString(L"Truth", L"TRUE");
        environment.SetString(L"Name", L"7 apples");
        environment.SetString(L"hex", L"0x10");
        environment.SetString(L"folder", WString::FromUtf8(folder.GetPath()) + L"/");
        environment.SetString(L"big", WString(1000000, L'a'));
        environment.SetString(L"event", event);
        EXPECT_TRUE(OS9EventManager::TryCreate(event, -5));
    }
    ~SystemFunctions() override { EXPECT_TRUE(OS9EventManager::TryDelete(event)); }

    std::string Evaluate(const std::string& expression) const
    {
        ExpressionEvaluator evaluator(true, environment, nullptr, L"", 0);
        evaluator.SetValidChars(L"abcdefghijklmnopqrstuvwxyz");
        return Outcome(evaluator, expression);
    }

    const WString event = WString::Format(L"unit%d", getpid());
    Environment environment;
};

TEST_F(SystemFunctions, GiveWhatTheFilesSay)
{
    for (const char* file : {"Functions/Config.txt", "Functions/System.txt"})
        for (const ExpressionRow& row : ReadRows(file))
            EXPECT_EQ(Evaluate(row.expression), row.outcome) << row.expression;
}

/// A clock by which time passes at every look at it: the status table looks at its file at every second reading.
struct RestlessClock : ManualClock
{
    unsigned int GetTickCount() override { return Sleep(25), ManualClock::GetTickCount(); }
};

TEST_F(SystemFunctions, AStatusItemThatGoesWhileItIsReadIsThereOrMissing)
{
    const TemporaryFolder folder;
    const std::string path = folder.Path("Status.ini");
    const RestlessClock clock;
    for (const auto& [item, value] : std::initializer_list<std::pair<const char*, const char*>>{
             {"int:5", "5"}, {"bool:true", "TRUE"}, {"double:2.5", "2.5"}, {"string:a", "'a'"}})
        for (const auto& [expression, missing] : std::initializer_list<std::pair<const char*, const char*>>{
                 {"%S{Item}", "48 %S{Item} @1"}, {"GetStatus(\"Item\")", "118 Status value not found @10"}}) {
            System::status.Load(folder.Write("Status.ini", std::string("[Items]\nItem=") + item));
            folder.Write("Status.ini", "");
            EXPECT_EQ(Evaluate(expression), value) << expression << item;
            EXPECT_EQ(Evaluate(expression), missing) << expression << item;
        }
}

TEST_F(SystemFunctions, RegisterTheDefaultsOfKeysThatExistOrNot)
{
    for (const wchar_t* key : {L"IntValue", L"Word", L"NewValue"}) {
        environment.SetString(L"key", key);
        for (const ExpressionRow& row : ReadRows("Functions/ConfigDefaults.txt")) {
            Evaluate(row.expression);
            EXPECT_EQ(DescribeMetaData(key), row.outcome) << row.expression;
        }
    }
}

TEST_F(SystemFunctions, FindEventsAndProcesses)
{
    EXPECT_EQ(Evaluate("GetEvent(event)"), "-5");
    EXPECT_EQ(OS9EventManager::GetReferenceCount(event), 0);

    const std::string id = std::to_string(getpid());
    const std::string name = event.ToUtf8(); // of this very process and no other
    environment.SetString(L"name", event);
    char formerName[16] = {};
    prctl(PR_GET_NAME, formerName);
    prctl(PR_SET_NAME, name.c_str());
    EXPECT_EQ(Evaluate("GetProcId(name)"), id);
    EXPECT_EQ(Evaluate("GetProcId(\"UNIT?*" + name.substr(5) + "\", \"?*\")"), id);
    EXPECT_EQ(Evaluate("GetProcId(name, \"no such line\")"), "-1");
    EXPECT_EQ(Evaluate("IsRunning(name, \"?*\")"), "TRUE");
    EXPECT_EQ(Evaluate("IsRunning(name, \"no such line\")"), "FALSE");
    prctl(PR_SET_NAME, formerName);
    EXPECT_EQ(Evaluate("IsRunning(name)"), "FALSE");
}
