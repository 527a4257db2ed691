#include "Instrument/StatusTable.h"
#include "Support/ExpressionFile.h"
#include "Support/HostTexts.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>

class StatusItems : public testing::Test
{
protected:
    TemporaryFolder folder;
    ManualClock clock;
    StatusTable status;
    const std::string path = folder.Path("Status.ini");

    void Load(const std::string& items) { status.Load(folder.Write("Status.ini", "[Items]\n" + items)); }
    /// The texts of the items, "-" for one that has none.
    std::string Get(std::initializer_list<const wchar_t*> names) const
    {
        std::string texts;
        for (const wchar_t* name : names) {
            WString value;
            texts += (texts.empty() ? "" : " ") +
                (status.TryGetFormattedString(name, value) ? value.ToUtf8() : std::string("-"));
        }
        return texts;
    }
    /// The item's type, and what each typed read gives, "-" for a refusal: bool, double, string, exit code, int,
    /// unsigned.
    std::string ReadAll(const WString& name) const
    {
        bool flag = false;
        double real = 0;
        WString text;
        ExitCode code;
        int number = 0;
        unsigned int count = 0;
        WString result = WString::Format(L"%x:", status.GetItemType(name));
        result += status.TryGetBool(name, flag) ? flag ? L" true" : L" false" : L" -";
        result += status.TryGetDouble(name, real) ? WString::Format(L" %g", real) : L" -";
        result += status.TryGetString(name, text) ? L" " + text : L" -";
        result += status.TryGetExitCode(name, code) ? L" " + code.ToString() : L" -";
        result += status.TryGetInt(name, number, INT_MIN, INT_MAX) ? WString::Format(L" %d", number) : L" -";
        result += status.TryGetUInt(name, count, 0, UINT_MAX) ? WString::Format(L" %u", count) : L" -";
        return result.ToUtf8();
    }
};

TEST_F(StatusItems, AreReadByTheirTypeOrTheLineIsPassedOver)
{
    for (const ExpressionRow& row : ReadRows("Host/StatusLines.txt")) {
        const bool isRefused = row.outcome.starts_with('"');
        const std::string lines = "Name=" + row.expression + "\nOther=int:2\n";
        Load(lines);
        EXPECT_EQ(ReadAll(L"nAME"), isRefused ? "0: - - - - - -" : row.outcome) << row.expression;
        WStringArray faults;
        status.GetFaults(faults);
        EXPECT_EQ(Join(faults), isRefused ? path + ":2: Name: " + row.outcome : "");
        EXPECT_TRUE(status.TrySet(L"Other", L"3"));
        status.Save();
        EXPECT_EQ(folder.Read("Status.ini"), "[Items]\n" + lines.substr(0, lines.size() - 2) + "3\n");
    }
    Load("D=double:5\nI=int:5\n");
    double real = 1;
    int number = 1;
    EXPECT_FALSE(status.TryGetDouble(L"D", real, 0, 4.9) || status.TryGetInt(L"I", number, 6, 9));
    EXPECT_TRUE(real == 1 && number == 1);
    EXPECT_TRUE(status.TryGetDouble(L"D", real, 5, 5) && status.TryGetInt(L"I", number, 5, 5));
}

TEST_F(StatusItems, AreSetWithinTheirTypeOrMade)
{
    Load("Level=double:1\nCount=uint:1\n");
    const std::tuple<const wchar_t*, const wchar_t*, bool, int> rows[] = {{L"LEVEL", L" 2.5 ", true, ST_Double},
        {L"Level", L"high", false, ST_Double}, {L"Count", L"-1", false, ST_UInt}, {L"Flag", L"False", true, ST_Bool},
        {L"Flag", L"0", false, ST_Bool}, {L"Whole", L"-12", true, ST_Int}, {L"Big", L"5000000000", true, ST_Double},
        {L"Text", L"5 mm", true, ST_String}, {L"Text", L"a\nb", false, ST_String}, {L"", L"1", false, ST_None},
        {L"a=b", L"1", false, ST_None}};
    for (const auto& [name, value, isSet, type] : rows) {
        EXPECT_EQ(status.TrySet(name, value), isSet) << WString(name).ToUtf8();
        EXPECT_EQ(status.GetItemType(name), type) << WString(name).ToUtf8();
    }
    EXPECT_TRUE(status.TryAdd(L"count", ST_ExitCode, L"1:2:3"));
    EXPECT_FALSE(status.TryAdd(L"Whole", ST_Bool, L"x") || status.TryAdd(L"Whole", ST_None, L"x"));
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"),
        "[Items]\nLevel=double:2.5\nCount=exitcode:1:2:3\nBig=double:5000000000\nFlag=bool:False\nText=string:5 mm\n"
        "Whole=int:-12\n");

    const std::string profile = TemporaryFolder::ReadFile(SOURCE_DIR "/Shell/Profile/Status.ini");
    status.Load(folder.Write("Status.ini", profile));
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), profile);
}

TEST_F(StatusItems, FormattedTextsAreMadeOfOtherItems)
{
    Load("A=formatted:<%S{B}, %s{ c }, %S>\nB=formatted:%S{C}%S{C}\nC=int:7\nOpen=formatted:%S{C}%S{C\n"
         "Absent=formatted:%S{Nothing}\nSelf=formatted:%S{Self}\nX=formatted:%S{Y}\nY=formatted:%S{X}\n"
         "Plain=string:%S{C}\nEmpty=formatted:\n");
    EXPECT_EQ(Get({L"a", L"C", L"Open", L"Plain", L"Empty"}), "<77, 7, %S> 7 7%S{C %S{C} ");
    EXPECT_EQ(Get({L"Absent", L"Nothing", L"Self", L"X"}), "- - - -");

    WString text;
    for (int i = 0; i < 99; ++i)
        text += L"%S{C}";
    status.TryAdd(L"Hundred", ST_Formatted, text);
    status.TryAdd(L"More", ST_Formatted, text + L"%S{C}");
    EXPECT_EQ(Get({L"Hundred", L"More"}), std::string(99, '7') + " -");
    status.TryAdd(L"Level0", ST_Formatted, L"");
    for (int i = 1; i < 40; ++i) { // 2 to the 39th items
        const WString inner = WString::Format(L"%%S{Level%d}", i - 1);
        status.TryAdd(WString::Format(L"Level%d", i), ST_Formatted, inner + inner);
    }
    EXPECT_EQ(Get({L"Level39"}), "-");
}

TEST_F(StatusItems, LiveItemsAreAskedAtEveryReading)
{
    int reads = 0;
    status.AddLive(L"Live", ST_Int, [&] { return WString::Format(L"%d", ++reads); });
    const std::string lines = "Live=string:file\nOther=formatted:%S{Live}\n";
    Load(lines);
    EXPECT_EQ(Get({L"live", L"Other"}), "1 2");
    EXPECT_EQ(status.GetItemType(L"LIVE"), ST_Int);
    EXPECT_FALSE(status.TrySet(L"Live", L"5"));
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), "[Items]\n" + lines);
}

TEST_F(StatusItems, AreReadAsTheyWereAtOneMoment)
{
    const std::string lines = "All=formatted:%S{Live}%S{Last}\nLast=int:7\n";
    Load(lines);
    status.AddLive(L"Live", ST_String, [&] {
        Load("Other=int:1\n"); // what another thread might do just then
        return L"at ";
    });
    StatusValue item;
    EXPECT_TRUE(status.TryGet(L"all", item));
    EXPECT_EQ(item.type, ST_Formatted);
    EXPECT_EQ(item.text, L"at 7");
    EXPECT_FALSE(status.TryGet(L"All", item) || status.ContainsItem(L"Last"));
    Load(lines);
    EXPECT_EQ(Get({L"All", L"All"}), "at 7 -");
}

TEST_F(StatusItems, DelayedValuesTakeEffectWhenDue)
{
    clock.Sleep(UINT_MAX - 1000); // so that the clock wraps within the delays
    Load("Stable=bool:false\n");
    status.TrySetAfter(L"stable", L"true", 2500);
    status.TrySetAfter(L"New", L"1", 2000);
    status.TrySetAfter(L"NEW", L"2", 3000);
    status.TrySetAfter(L"Stuck", L"2", UINT_MAX);
    const std::pair<unsigned int, const char*> rows[] = {{2499, "false - -"}, {1, "true - -"}, {499, "true - -"},
        {1, "true 2 -"}, {INT_MAX - 3001u, "true 2 -"}, {1, "true 2 2"}};
    for (const auto& [wait, texts] : rows) {
        clock.Sleep(wait);
        EXPECT_EQ(Get({L"Stable", L"New", L"Stuck"}), texts);
    }
    status.TrySetAfter(L"Stable", L"no boolean", 0);
    EXPECT_EQ(Get({L"Stable"}), "true");
}

TEST_F(StatusItems, ChangesOfOthersAreTakenOver)
{
    Load("X=int:0\nY=int:0\n");
    EXPECT_TRUE(status.TrySet(L"Y", L"5")); // not saved
    StatusTable other;
    other.Load(path);
    EXPECT_TRUE(other.TrySet(L"X", L"1") && other.TrySet(L"Z", L"1"));
    other.Save();
    clock.Sleep(49);
    EXPECT_EQ(Get({L"X"}), "0") << "the file is not looked at more often than that";
    clock.Sleep(1);
    EXPECT_EQ(Get({L"X", L"Y", L"Z"}), "1 5 1");

    other.TrySet(L"X", L"2");
    other.Save();
    status.Refresh();
    EXPECT_EQ(Get({L"X"}), "2");
    status.TrySet(L"X", L"3");
    status.Refresh();
    EXPECT_EQ(Get({L"X"}), "3") << "a change is taken over once";
    other.TrySet(L"Z", L"7");
    other.Save();
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), "[Items]\nX=int:3\nY=int:5\nZ=int:7\n");
}

TEST_F(StatusItems, AFaultyLineChangesNothingUntilItIsRepaired)
{
    Load("X=int:0\nY=int:5\n");
    folder.Write("Status.ini", "[Items]\nX=int:1\nY=in");
    status.Refresh();
    EXPECT_EQ(Get({L"X", L"Y"}), "1 5");
    EXPECT_TRUE(status.TrySet(L"X", L"2"));
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), "[Items]\nX=int:2\nY=in");
    folder.Write("Status.ini", "[Items]\nX=int:1\nY=int:2\n");
    status.Refresh();
    EXPECT_EQ(Get({L"X", L"Y"}), "1 2");
    std::filesystem::remove(path);
    status.Refresh();
    EXPECT_EQ(Get({L"X", L"Y"}), "1 2");
}

TEST_F(StatusItems, AreDeletedOrWhatCannotBeSavedIsUndone)
{
    Load("X=int:1\nY=int:2\n");
    status.AddLive(L"Live", ST_Int, [] { return WString(L"1"); });
    EXPECT_FALSE(status.TryDelete(L"Live") || status.TryDelete(L"None"));
    EXPECT_TRUE(status.TryDelete(L"x"));
    status.Save();
    EXPECT_EQ(folder.Read("Status.ini"), "[Items]\nY=int:2\n");
    std::filesystem::create_directory(path + ".d");
    std::filesystem::rename(path, path + ".d/Status.ini");
    std::filesystem::create_directory(path);
    EXPECT_TRUE(status.TrySet(L"Y", L"3") && status.TrySet(L"Z", L"4"));
    EXPECT_EQ(Get({L"Y", L"Z"}), "3 4");
    EXPECT_EQ(GetThrown([&] { status.Save(); }), "0:1:10 File error: " + path + ": Is a directory");
    EXPECT_EQ(Get({L"Y", L"Z"}), "2 -");
}

TEST_F(StatusItems, NumbersTravelEvenly)
{
    clock.Sleep(UINT_MAX - 5000); // so that the clock wraps on the way
    Load("T=double:36\nN=int:10\nB=bool:true\nLast=uint64:0\n");
    EXPECT_FALSE(status.TrySetAfter(L"B", L"false", 0, 1) || status.TrySetAfter(L"New", L"x", 0, 1));
    EXPECT_TRUE(status.TrySetAfter(L"T", L"37", 0, 10000) && status.TrySetAfter(L"N", L"-1", 5000, 10000) &&
        status.TrySetAfter(L"Last", L"18446744073709551615", 9999, 1));
    const std::pair<unsigned int, const char*> rows[] = {{0, "36 10 0"}, {1000, "36.1 10 0"}, {4000, "36.5 10 0"},
        {4900, "36.99 5 0"}, {100, "37 5 18446744073709551615"}, {4500, "37 0 18446744073709551615"},
        {499, "37 -1 18446744073709551615"}, {1, "37 -1 18446744073709551615"}};
    for (const auto& [wait, texts] : rows) {
        clock.Sleep(wait);
        EXPECT_EQ(Get({L"T", L"N", L"Last"}), texts);
    }
    status.TrySetAfter(L"T", L"0", 0, 10000);
    EXPECT_TRUE(status.TrySet(L"T", L"5"));
    clock.Sleep(5000);
    EXPECT_EQ(Get({L"T"}), "5") << "who sets it on its way stops it";
}
