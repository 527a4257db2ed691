#include "Instrument/ConfigFileData.h"
#include "Support/ChildProcess.h"
#include "Support/ExpressionFile.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <tuple>

class ConfigFile : public testing::Test
{
protected:
    TemporaryFolder folder;
    ConfigFileData config;

    void Load(const std::string& text) { config.Load(folder.Write("Config.ini", text)); }
    WString Get(const wchar_t* key, int shortest = 0, int longest = -1)
    {
        return config.GetStringOrUseDefault(L"S", key, L"", ExitCode(3), shortest, longest);
    }
    /// What the stored text gives as each type, "-" for a refusal: bool, int, unsigned, double.
    std::string ReadAll(const wchar_t* key) const
    {
        bool flag = false;
        int number = 0;
        unsigned int count = 0;
        double real = 0;
        std::string result = config.TryGetBool(L"S", key, flag) ? flag ? "true" : "false" : "-";
        result += config.TryGetInt(L"S", key, number, INT_MIN, INT_MAX) ? " " + std::to_string(number) : " -";
        result += config.TryGetUInt(L"S", key, count, 0, UINT_MAX) ? " " + std::to_string(count) : " -";
        const bool isReal = config.TryGetDouble(L"S", key, real);
        return result + (isReal ? WString::Format(L" %.12g", real).ToUtf8() : " -");
    }
};

TEST_F(ConfigFile, ReadsStoredTextsByTypeAndWithinLimits)
{
    for (const ExpressionRow& row : ReadRows("Host/SettingTexts.txt")) {
        Load("[S]\nK=" + row.expression + "\n");
        EXPECT_EQ(ReadAll(L"K"), row.outcome) << row.expression;
    }
    EXPECT_EQ(ReadAll(L"Absent"), "- - - -");

    Load("[S]\nK=10\n");
    int number = 1;
    EXPECT_TRUE(config.TryGetInt(L"s", L"k", number, 10, 10));
    EXPECT_FALSE(config.TryGetInt(L"S", L"K", number, 11, 20));
    EXPECT_EQ(number, 10);
    EXPECT_EQ(Get(L"K", 2, 2), L"10");
    EXPECT_EQ(GetThrown([&] { Get(L"K", 3, 9); }) + GetThrown([&] { Get(L"K", 0, 1); }), "0:0:30:0:3");
}

TEST_F(ConfigFile, DefaultsAreUsedAndRegistered)
{
    Load("[Test]\nText=abc\nYes=true\n");
    const ExitCode failure(0, 505, 140);
    EXPECT_TRUE(config.GetBoolOrUseDefault(L"test", L"yes", false, 20));
    EXPECT_TRUE(config.GetBoolOrUseDefault(L"Test", L"Flag", true, 20));
    EXPECT_EQ(config.GetIntOrUseDefault(L"Test", L"Number", -5, failure, -10, 10), -5);
    EXPECT_EQ(config.GetUIntOrUseDefault(L"Test", L"Count", 4000000000U, failure, 0, UINT_MAX), 4000000000U);
    EXPECT_EQ(config.GetDoubleOrUseDefault(L"Test", L"Level", 0.1, failure, 0, DBL_MAX), 0.1);
    EXPECT_EQ(config.GetStringOrUseDefault(L"Test", L"Name", L"x y", failure, -1, INT_MAX), L"x y");
    EXPECT_EQ(config.GetStringOrUseDefault(L"Other", L"Name", L"", failure, 1, -1), L"");
    EXPECT_EQ(GetThrown([&] { config.GetBoolOrUseDefault(L"Test", L"Text", true, 20); }), "0:0:20");
    EXPECT_EQ(GetThrown([&] { config.GetDoubleOrUseDefault(L"Test", L"Text", 1, failure, 0, 9); }), "0:505:140");

    config.GetMetaData().Update(L"TEST", L"NUMBER", ConfigDataType::Int, L"How many", -10, INT_MAX, -5);
    config.GetMetaData().Update(L"Test", L"Number", ConfigDataType::Int, nullptr, -10, INT_MAX, 8);
    WStringArray document;
    config.GetMetaData().GetDocument(document);
    EXPECT_EQ(Join(document),
        "[Other]\nName: Str, default \"\", length at least 1\n[test]\nCount: UInt, default 4000000000\n"
        "Flag: Bool, default true\nLevel: Dbl, default 0.1, at least 0\nName: Str, default \"x y\"\n"
        "Number: Int, default 8, at least -10; How many\nText: Dbl, default 1, 0 to 9\nyes: Bool, default false");

    // A setting, texts that fit it, and texts that do not.
    const std::tuple<const wchar_t*, WStringArray, WStringArray> rows[] = {
        {L"Flag", {L"false", L"TRUE"}, {L"1", L""}},
        {L"Number", {L"-10", L"7"}, {L"-11", L"1.5", L"x"}},
        {L"Text", {L"0", L"8.5", L"9"}, {L"-0.1", L"9.1", L"x", L""}},
        {L"Word", {L"ab", L"abc"}, {L"a", L"abcd"}},
        {L"Name", {L"", L"any"}, {}},
    };
    config.GetMetaData().UpdateStr(L"Test", L"Word", nullptr, 2, 3, L"ab");
    for (const auto& [key, fitting, others] : rows) {
        ConfigMetaData::Item item;
        ASSERT_TRUE(config.GetMetaData().TryGet(L"Test", key, item));
        for (const WString& text : fitting)
            EXPECT_TRUE(ConfigMetaData::Fits(item, text)) << item.key.ToUtf8() << "=" << text.ToUtf8();
        for (const WString& text : others)
            EXPECT_FALSE(ConfigMetaData::Fits(item, text)) << item.key.ToUtf8() << "=" << text.ToUtf8();
    }
}

TEST_F(ConfigFile, SavingChangesOnlyWhatWasSet)
{
    const std::string profile = TemporaryFolder::ReadFile(SOURCE_DIR "/Shell/Profile/Config.ini");
    Load(profile);
    config.Save();
    EXPECT_EQ(folder.Read("Config.ini"), profile);

    Load("; head\n\n[Ä]\n; first\nMaß=1\n; second\nKey=2\n\n[B]\nKey=3\n; Off=1\n");
    config.SetString(L"ä", L"maß", L" 5 ");
    config.SetString(L"New", L"Größe", L"%s=;x");
    EXPECT_TRUE(config.TryDelete(L"b", L"KEY"));
    EXPECT_FALSE(config.TryDelete(L"b", L"KEY"));
    config.Save();
    EXPECT_EQ(folder.Read("Config.ini"),
        "; head\n\n[Ä]\n; first\nMaß=5\n; second\nKey=2\n\n[B]\n; Off=1\n\n[New]\nGröße=%s=;x\n");
    WStringArray names;
    config.GetSections(names);
    EXPECT_EQ(Join(names), "Ä\nB\nNew");
    config.GetKeys(L"ä", names);
    EXPECT_EQ(Join(names), "Maß\nKey");
}

TEST_F(ConfigFile, SavingKeepsWhatIsNotUnderstood)
{
    using namespace std::literals;
    // The file, what setting [S] K to 2 makes of it, and the faults that are found in it.
    const std::tuple<std::string, std::string, const char*> rows[] = {
        {"", "[S]\nK=2\n", ""},
        {"\xEF\xBB\xBF[S]", "\xEF\xBB\xBF[S]\nK=2\n", ""},
        {"; a\r\r[S]\rL=1\rM=2\n", "; a\r\r[S]\rL=1\rM=2\nK=2\r", ""},
        {"L=1\r\nno value\r\n[S]\r\n K =  1 \r\n[T]\r\n\xFF=\xFF",
            "L=1\r\nno value\r\n[S]\r\n K =  2\r\n[T]\r\n\xFF=\xFF",
            ":2: \"no value\" is neither a [section] nor a key=value"},
        {"[S]\nK=1\n[T]\n[s]\nK=3\n=1\n\0x=1\n"s, "[S]\nK=1\n[T]\n[s]\nK=2\n=1\n\0x=1\n"s,
            ":6: \"=1\" is neither a [section] nor a key=value\n:7: this is no text"},
        {"[S]\nL=1\n\n[S\nK=1\n[T]", "[S]\nL=1\nK=2\n\n[S\nK=1\n[T]",
            ":4: \"[S\" lacks a ], so that what follows is in no section"},
    };
    for (const auto& [before, after, faults] : rows) {
        Load(before);
        WStringArray found;
        config.GetFaults(found);
        WString texts = WString::FromUtf8(Join(found));
        texts.Replace(WString::FromUtf8(folder.Path("Config.ini")), L"", false);
        EXPECT_EQ(texts.ToUtf8(), faults) << before;
        config.SetString(L"S", L"K", L"2");
        config.Save();
        EXPECT_EQ(folder.Read("Config.ini"), after);
        config.Load(folder.Path("Config.ini"));
        EXPECT_EQ(Get(L"K"), L"2") << before;
    }
}

TEST_F(ConfigFile, SavingKeepsLinkAndPermissions)
{
    namespace fs = std::filesystem;
    const std::string target = folder.Path("target");
    fs::create_symlink("inner", folder.Path("link"));
    fs::create_symlink(target, folder.Path("inner"));
    for (const wchar_t* value : {L"1", L"2"}) { // makes the file, and replaces it
        config.Load(folder.Path("link"));
        folder.Write("target.12.tmp", "of a process that was killed");
        config.SetString(L"S", L"K", value);
        config.Save();
        fs::permissions(target, fs::perms(0640));
    }
    EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
    EXPECT_EQ(folder.Read("target"), "[S]\nK=2\n");
    config.Save();
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.GetPath()), {}), 4)
        << "links, target and lock: no temporary files";
}

TEST_F(ConfigFile, AFileOfOthersIsLeftToThem)
{
    namespace fs = std::filesystem;
    Load("[S]\nK=1\n");
    fs::permissions(folder.GetPath(), fs::perms(0777));
    fs::permissions(folder.Path("Config.ini"), fs::perms(0644));
    EXPECT_TRUE(RunUnprivileged([&] {
        config.SetString(L"S", L"K", L"2");
        return GetThrown([&] { config.Save(); }) ==
            "0:1:10 File error: " + folder.Path("Config.ini") + ": Permission denied" &&
            Get(L"K") == L"1";
    }));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.GetPath()), {}), 1);
}

TEST_F(ConfigFile, NamesThatAFileCannotHoldAreRefused)
{
    Load("[S]\nK=1\n");
    const wchar_t* rows[][3] = {{L"S]", L"K", L"2"}, {L"S\nT", L"K", L"2"}, {L"S", L"K=", L"2"}, {L"S", L"K\rL", L"2"},
        {L"S", L"", L"2"}, {L"S", L" ", L"2"}, {L"S", L";K", L"2"}, {L"S", L"#K", L"2"}, {L"S", L" [K", L"2"},
        {L"", L"\xFEFFK", L"2"}, {L"S", L"K", L"2\rX=3"}, {L"S", L"K", L"2\nX=3"}};
    for (const auto& [section, key, value] : rows)
        EXPECT_EQ(
            GetThrown([&, section = section, key = key, value = value] { config.SetString(section, key, value); }),
            "0:1:8 Wrong arguments: the settings file cannot hold " + (WString(L"[") + section + L"] " + key).ToUtf8());
    config.Save();
    EXPECT_EQ(folder.Read("Config.ini"), "[S]\nK=1\n");
}

TEST_F(ConfigFile, AFileThatCannotBeReadIsNotReplaced)
{
    config.SetString(L"S", L"K", L"before it is known where");
    EXPECT_EQ(GetThrown([&] { config.Save(); }), "0:1:10 File error: no data folder has been opened");
    const std::string error = "0:1:10 File error: " + folder.GetPath();
    Load("[S]\nK=1\n");
    EXPECT_EQ(GetThrown([&] { config.Load(folder.GetPath()); }), error + ": Is a directory");
    EXPECT_FALSE(config.Contains(L"S", L"K"));
    config.SetString(L"S", L"K", L"2");
    EXPECT_EQ(GetThrown([&] { config.Save(); }), error + ": Is a directory");
    config.Load(folder.Path("absent/Config.ini"), folder.Path("Config.ini"));
    EXPECT_EQ(Get(L"K"), L"1") << "the defaults";
    config.SetString(L"S", L"K", L"2");
    EXPECT_EQ(GetThrown([&] { config.Save(); }), error + "/absent/Config.ini: No such file or directory");
    EXPECT_EQ(Get(L"K"), L"1") << "what cannot be saved has no effect";
}
