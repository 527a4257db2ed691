#include "Instrument/StatusTable.h"
#include "Support/HostTexts.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cfloat>
#include <climits>
#include <thread>

class StatusItems : public testing::Test
{
protected:
    TemporaryFolder folder;
    ManualClock clock;
    StatusTable status;
    const std::string path = folder.Path("Status.ini");

    void Load(const std::string& items) { status.Load(folder.Write("Status.ini", "[Items]\n" + items)); }
    std::string Get(const WString& name) const
    {
        WString value = L"?";
        return status.TryGetFormattedString(name, value) ? value.ToUtf8() : "-";
    }
};

/// The item's type, and what each typed read gives, "-" for a refusal: bool, double, string, exit code, int, unsigned.
static std::string ReadAll(const StatusTable& status, const WString& name)
{
    bool flag = false;
    double real = 0;
    WString text;
    ExitCode code;
    int number = 0;
    unsigned int count = 0;
    WString result = WString::Format(L"%x:", status.GetItemType(name));
    result += status.TryGetBool(name, flag) ? flag ? L" true" : L" false" : L" -";
    result += status.TryGetDouble(name, real, -DBL_MAX, DBL_MAX) ? WString::Format(L" %g", real) : L" -";
    result += status.TryGetString(name, text) ? L" " + text : L" -";
    result += status.TryGetExitCode(name, code) ? L" " + code.ToString() : L" -";
    result += status.TryGetInt(name, number, INT_MIN, INT_MAX) ? WString::Format(L" %d", number) : L" -";
    result += status.TryGetUInt(name, count, 0, UINT_MAX) ? WString::Format(L" %u", count) : L" -";
    return result.ToUtf8();
}

TEST_F(StatusItems, AreReadByTheirType)
{
    const struct
    {
        const char* text;
        const char* outcome;
    } rows[] = {
        {"bool:TRUE", "1: true - - - - -"},
        {"Bool: false", "1: false - - - - -"},
        {"double:-2.50e1", "2: - -25 - - - -"},
        {"string:", "3: - -  - - -"},
        {"string:12:30 ä", "3: - - 12:30 ä - - -"},
        {"exitcode:1043:505:133", "4: - - - 1043:505:133 - -"},
        {"formatted:12", "5: - - - - - -"},
        {"int:-2147483648", "801: - - - - -2147483648 -"},
        {"int:7", "801: - - - - 7 7"},
        {"uint:4294967295", "802: - - - - - 4294967295"},
        {"uint64:12", "804: - - - - 12 12"},
        {"uint64:18446744073709551615", "804: - - - - - -"},
    };
    for (const auto& row : rows) {
        Load(std::string("Name=") + row.text + "\n");
        EXPECT_EQ(ReadAll(status, L"nAME"), row.outcome) << row.text;
    }
    EXPECT_FALSE(status.ContainsItem(L"Name2"));
    EXPECT_EQ(ReadAll(status, L"Name2"), "0: - - - - - -");

    Load("D=double:5\nI=int:5\n");
    double real = 1;
    int number = 1;
    EXPECT_FALSE(status.TryGetDouble(L"D", real, 0, 4.9));
    EXPECT_FALSE(status.TryGetInt(L"I", number, 6, 9));
    EXPECT_EQ(real, 1);
    EXPECT_EQ(number, 1);
    EXPECT_TRUE(status.TryGetDouble(L"D", real, 5, 5));
    EXPECT_TRUE(status.TryGetInt(L"I", number, 5, 5));
}

TEST_F(StatusItems, LinesThatDoNotFitAreReported)
{
    Load("Kept=int:1\n");
    const struct
    {
        const char* text;
        const char* reason;
    } rows[] = {
        {"true", "\"true\" does not begin with a type and a colon"},
        {"number:1", "\"number:1\" does not begin with a type and a colon"},
        {"bool:1", "\"1\" is no value of type bool"},
        {"double:1,5", "\"1,5\" is no value of type double"},
        {"int:2147483648", "\"2147483648\" is no value of type int"},
        {"uint:-1", "\"-1\" is no value of type uint"},
        {"UINT64:18446744073709551616", "\"18446744073709551616\" is no value of type uint64"},
        {"exitcode:1:2", "\"1:2\" is no value of type exitcode"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(GetThrown([&] { Load(std::string("Fine=int:2\nBad=") + row.text + "\n"); }),
            "0:1:10 File error: " + path + ": Bad: " + row.reason);
    }
    WStringArray names;
    status.GetNames(names);
    EXPECT_EQ(Join(names), "Kept");
}

TEST_F(StatusItems, AreSetWithinTheirTypeOrMade)
{
    Load("Level=double:1\nCount=uint:1\n");
    const struct
    {
        const wchar_t* name;
        const wchar_t* value;
        bool isSet;
        int type;
    } rows[] = {
        {L"LEVEL", L" 2.5 ", true, ST_Double},
        {L"Level", L"high", false, ST_Double},
        {L"Count", L"-1", false, ST_UInt},
        {L"Flag", L"False", true, ST_Bool},
        {L"Flag", L"0", false, ST_Bool},
        {L"Whole", L"-12", true, ST_Int},
        {L"Big", L"5000000000", true, ST_Double},
        {L"Text", L"5 mm", true, ST_String},
        {L"Text", L"a\nb", false, ST_String},
        {L"", L"1", false, ST_None},
        {L"a=b", L"1", false, ST_None},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(status.TrySet(row.name, row.value), row.isSet) << WString(row.name).ToUtf8();
        EXPECT_EQ(status.GetItemType(row.name), row.type) << WString(row.name).ToUtf8();
    }
    EXPECT_TRUE(status.TryAdd(L"count", ST_ExitCode, L"1:2:3"));
    EXPECT_FALSE(status.TryAdd(L"Whole", ST_Bool, L"x"));
    EXPECT_FALSE(status.TryAdd(L"Whole", ST_None, L"x"));

    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"),
        "[Items]\nLevel=double:2.5\nCount=exitcode:1:2:3\nBig=double:5000000000\n"
        "Flag=bool:False\nText=string:5 mm\nWhole=int:-12\n");
}

TEST_F(StatusItems, FormattedTextsAreMadeOfOtherItems)
{
    Load("A=formatted:<%S{B}, %s{ c }, %S>\nB=formatted:%S{C}%S{C}\nC=int:7\nOpen=formatted:%S{C}%S{C\n"
         "Absent=formatted:%S{Nothing}\nSelf=formatted:%S{Self}\nX=formatted:%S{Y}\nY=formatted:%S{X}\n"
         "Plain=string:%S{C}\nEmpty=formatted:\n");
    const struct
    {
        const wchar_t* name;
        const char* text;
    } rows[] = {
        {L"a", "<77, 7, %S>"},
        {L"C", "7"},
        {L"Open", "7%S{C"},
        {L"Absent", "-"},
        {L"Nothing", "-"},
        {L"Self", "-"},
        {L"X", "-"},
        {L"Plain", "%S{C}"},
        {L"Empty", ""},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Get(row.name), row.text);
}

TEST_F(StatusItems, FormattedTextsOfTooManyItemsAreRefused)
{
    WString text;
    for (int i = 0; i < 99; ++i)
        text += L"%S{One}";
    Load("One=int:1\n");
    status.TryAdd(L"Hundred", ST_Formatted, text);
    status.TryAdd(L"More", ST_Formatted, text + L"%S{One}");
    EXPECT_EQ(Get(L"Hundred"), std::string(99, '1'));
    EXPECT_EQ(Get(L"More"), "-");

    status.TryAdd(L"Level0", ST_Formatted, L"");
    for (int i = 1; i < 40; ++i) { // 2 to the 39th items
        const WString inner = WString::Format(L"%%S{Level%d}", i - 1);
        status.TryAdd(WString::Format(L"Level%d", i), ST_Formatted, inner + inner);
    }
    EXPECT_EQ(Get(L"Level39"), "-");
}

TEST_F(StatusItems, LiveItemsAreAskedAtEveryReading)
{
    int reads = 0;
    status.AddLive(L"Live", ST_Int, [&] { return WString::Format(L"%d", ++reads); });
    Load("Live=string:file\nOther=formatted:%S{Live}\n");
    int number = 0;
    EXPECT_TRUE(status.TryGetInt(L"live", number, 0, 9));
    EXPECT_EQ(number, 1);
    EXPECT_EQ(Get(L"Other"), "2");
    EXPECT_EQ(status.GetItemType(L"LIVE"), ST_Int);
    EXPECT_FALSE(status.TrySet(L"Live", L"5"));
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), "[Items]\nLive=string:file\nOther=formatted:%S{Live}\n");
}

TEST_F(StatusItems, DelayedValuesTakeEffectWhenDue)
{
    Load("Stable=bool:false\n");
    status.SetAfter(L"stable", L"true", 2500);
    status.SetAfter(L"New", L"1", 2000);
    status.SetAfter(L"NEW", L"2", 3000);
    status.SetAfter(L"Stuck", L"2", UINT_MAX);
    clock.Sleep(2499);
    EXPECT_EQ(Get(L"Stable"), "false");
    clock.Sleep(1);
    EXPECT_EQ(Get(L"Stable"), "true");
    EXPECT_FALSE(status.ContainsItem(L"New"));
    clock.Sleep(500);
    EXPECT_EQ(Get(L"New"), "2");
    clock.Sleep(INT_MAX - 3001);
    EXPECT_FALSE(status.ContainsItem(L"Stuck"));
    clock.Sleep(1);
    EXPECT_TRUE(status.ContainsItem(L"Stuck"));

    status.SetAfter(L"Stable", L"no boolean", 0);
    EXPECT_EQ(Get(L"Stable"), "true");
}

TEST_F(StatusItems, DelaysOutliveTheWrapOfTheClock)
{
    clock.Sleep(UINT_MAX - 1000);
    Load("X=int:0\n");
    status.SetAfter(L"X", L"1", 2000);
    clock.Sleep(1999);
    EXPECT_EQ(Get(L"X"), "0");
    clock.Sleep(1);
    EXPECT_EQ(Get(L"X"), "1");
}

TEST_F(StatusItems, ChangesOfOthersAreTakenOver)
{
    Load("X=int:0\nY=int:0\n");
    EXPECT_TRUE(status.TrySet(L"Y", L"5")); // not saved
    StatusTable other;
    other.Load(path);
    EXPECT_TRUE(other.TrySet(L"X", L"1"));
    EXPECT_TRUE(other.TrySet(L"Z", L"1"));
    other.Save();

    clock.Sleep(49);
    EXPECT_EQ(Get(L"X"), "0") << "the file is not looked at more often than that";
    clock.Sleep(1);
    EXPECT_EQ(Get(L"X") + Get(L"Y") + Get(L"Z"), "151");

    other.TrySet(L"X", L"2");
    other.Save();
    status.Refresh();
    EXPECT_EQ(Get(L"X"), "2");
    status.TrySet(L"X", L"3");
    status.Refresh();
    EXPECT_EQ(Get(L"X"), "3") << "a change is taken over once";

    other.TrySet(L"Z", L"7");
    other.Save();
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), "[Items]\nX=int:3\nY=int:5\nZ=int:7\n");
}

TEST_F(StatusItems, AFaultyFileChangesNothingUntilItIsRepaired)
{
    Load("X=int:0\n");
    folder.Write("Status.ini", "[Items]\nX=int:1\nY=in");
    status.Refresh();
    EXPECT_EQ(Get(L"X"), "0");
    EXPECT_EQ(GetThrown([&] { status.Save(); }),
        "0:1:10 File error: " + path + ": Y: \"in\" does not begin with a type and a colon");
    folder.Write("Status.ini", "[Items]\nX=int:1\nY=int:2\n");
    status.Refresh();
    EXPECT_EQ(Get(L"X") + Get(L"Y"), "12");
    std::filesystem::remove(path);
    status.Refresh();
    EXPECT_EQ(Get(L"X") + Get(L"Y"), "12");
}

TEST_F(StatusItems, ProfileIsKeptBySaving)
{
    const std::string profile = TemporaryFolder::ReadFile(SOURCE_DIR "/Shell/Profile/Status.ini");
    status.Load(folder.Write("Status.ini", profile));
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), profile);
    EXPECT_EQ(Get(L"VersionText"), "OrvaneX9 4.2.1, no. 90150042");
}

TEST_F(StatusItems, ServeThreadsAtOnce)
{
    Load("Text=string:aaaaaaaaaaaaaaaaaaaaaaaa\nAll=formatted:%S{Text}\n");
    std::atomic<int> wrong = 0;
    const auto run = [&](wchar_t ch) {
        for (int i = 0; i < 300; ++i) {
            status.TrySet(L"Text", WString(24, ch));
            const std::string text = Get(L"All");
            if (text.find_first_not_of(text.front()) != std::string::npos || text.size() != 24)
                ++wrong;
        }
    };
    std::thread first(run, L'a');
    std::thread second(run, L'b');
    first.join();
    second.join();
    EXPECT_EQ(wrong, 0);
}
