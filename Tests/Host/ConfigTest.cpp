#include "Instrument/ConfigFileData.h"
#include "Support/ExpressionFile.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>

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
        "; head\n\n\n[Ä]\n\n; first\nMaß=5\n\n; second\nKey=2\n\n\n[B]\n\n\n[New]\nGröße=%s=;x\n; Off=1\n");
    WStringArray names;
    config.GetSections(names);
    EXPECT_EQ(Join(names), "Ä\nB\nNew");
    config.GetKeys(L"ä", names);
    EXPECT_EQ(Join(names), "Maß\nKey");
}

TEST_F(ConfigFile, SavingKeepsLinkAndPermissions)
{
    namespace fs = std::filesystem;
    const std::string target = folder.Write("target", "[S]\nK=1\n");
    fs::permissions(target, fs::perms(0640));
    fs::create_symlink("target", folder.Path("link"));
    config.Load(folder.Path("link"));
    config.SetString(L"S", L"K", L"2");
    config.Save();
    EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
    EXPECT_EQ(folder.Read("target"), "[S]\nK=2\n");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.GetPath()), {}), 3)
        << "link, target and lock: no temporary files";
}

TEST_F(ConfigFile, NamesThatAFileCannotHoldAreRefused)
{
    Load("[S]\nK=1\n");
    const wchar_t* rows[][3] = {{L"S]", L"K", L"2"}, {L"S\nT", L"K", L"2"}, {L"S", L"K=", L"2"}, {L"S", L"K\rL", L"2"},
        {L"S", L"", L"2"}, {L"S", L" ", L"2"}, {L"S", L";K", L"2"}, {L"S", L"#K", L"2"}, {L"S", L" [K", L"2"},
        {L"S", L"K", L"2\nX=3"}};
    for (const auto& [section, key, value] : rows)
        EXPECT_EQ(
            GetThrown([&, section = section, key = key, value = value] { config.SetString(section, key, value); }),
            "0:1:8 Wrong arguments: the settings file cannot hold " + (WString(L"[") + section + L"] " + key).ToUtf8());
    config.Save();
    EXPECT_EQ(folder.Read("Config.ini"), "[S]\nK=1\n");
}

TEST_F(ConfigFile, LoadingOddFiles)
{
    Load("\xEF\xBB\xBF[S]\r\n K = 1 \r\nno value\r\n=2\r\nL=\xFF\r\nk=3");
    WStringArray keys;
    config.GetKeys(L"S", keys);
    EXPECT_EQ(Join(keys), "K\nL");
    EXPECT_EQ(Get(L"K") + Get(L"L"), L"3\xFFFD");

    const std::string error = "0:1:10 File error: " + folder.GetPath();
    EXPECT_EQ(GetThrown([&] { Load("[T]\n\n[S\nX=1\n"); }), error + "/Config.ini: line 3: missing ]");
    EXPECT_EQ(GetThrown([&] { config.Load(folder.GetPath()); }), error + ": Is a directory");
    EXPECT_EQ(GetThrown([&] { Load(std::string("[T]\0\nX=1", 8)); }), error + "/Config.ini: not a text file");
    EXPECT_TRUE(config.Contains(L"S", L"K")) << "a failed load changes nothing";
    config.Load(folder.Path("absent/Config.ini"));
    EXPECT_FALSE(config.Contains(L"S", L"K"));
    EXPECT_EQ(GetThrown([&] { config.Save(); }), error + "/absent/Config.ini: No such file or directory");
}
