#include "Instrument/ConfigFileData.h"
#include "Instrument/Environment.h"
#include "Support/ChildProcess.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>

TEST(EnvironmentStore, HandlesShareNamesInAnyCase)
{
    Environment environment;
    const Environment copy = environment;
    environment.SetString(L"Zähler", L"1");
    environment.SetString(L"ZÄHLER", L"2");
    environment.SetInt(L"Low", INT_MIN);
    environment.SetUInt(L"High", UINT_MAX);

    WStringArray names;
    copy.GetKeys(names);
    names.Sort();
    EXPECT_EQ(Join(names), "High\nLow\nZähler");
    EXPECT_EQ(copy.GetString(L"zähler", 5), L"2");
    EXPECT_EQ(copy.GetString(L"low", 5), L"-2147483648");
    EXPECT_EQ(copy.GetString(L"HIGH", 5), L"4294967295");

    EXPECT_TRUE(environment.TryDelete(L"zÄHLER"));
    EXPECT_FALSE(environment.TryDelete(L"Zähler"));
    EXPECT_FALSE(copy.ContainsKey(L"Zähler"));
    EXPECT_EQ(GetThrown([&] { copy.GetString(L"Zähler", 5); }), "0:0:5");
    WString kept = L"kept";
    EXPECT_FALSE(copy.TryGetString(L"Zähler", kept));
    EXPECT_EQ(kept, L"kept");
}

class ConfigFile : public testing::Test
{
protected:
    TemporaryFolder folder;
    ConfigFileData config;
    ConfigMetaData::Item item;

    void Load(const std::string& text) { config.Load(folder.Write("Config.ini", text)); }
};

/// What a stored text gives as each type, "-" for a refusal: bool, int, unsigned, double.
static std::string ReadAll(const ConfigFileData& config, const WString& key)
{
    bool flag = false;
    int number = 0;
    unsigned int count = 0;
    double real = 0;
    std::string result = config.TryGetBool(L"S", key, flag) ? flag ? "true" : "false" : "-";
    result += config.TryGetInt(L"S", key, number, INT_MIN, INT_MAX) ? " " + std::to_string(number) : " -";
    result += config.TryGetUInt(L"S", key, count, 0, UINT_MAX) ? " " + std::to_string(count) : " -";
    return result + (config.TryGetDouble(L"S", key, real, -DBL_MAX, DBL_MAX) ? " " + std::to_string(real) : " -");
}

TEST_F(ConfigFile, ReadsStoredTextsByType)
{
    const struct
    {
        const char* text;
        const char* outcome;
    } rows[] = {
        {"TRUE", "true - - -"},
        {"false", "false - - -"},
        {"yes", "- - - -"},
        {"12", "- 12 12 12.000000"},
        {"+7", "- 7 7 7.000000"},
        {"-0", "- 0 0 -0.000000"},
        {"-2147483648", "- -2147483648 - -2147483648.000000"},
        {"-2147483649", "- - - -2147483649.000000"},
        {"2147483647", "- 2147483647 2147483647 2147483647.000000"},
        {"2147483648", "- - 2147483648 2147483648.000000"},
        {"4294967295", "- - 4294967295 4294967295.000000"},
        {"4294967296", "- - - 4294967296.000000"},
        {"99999999999999999999", "- - - 100000000000000000000.000000"},
        {"12.5", "- - - 12.500000"},
        {"1e3", "- 1000 1000 1000.000000"},
        {"5.0", "- 5 5 5.000000"},
        {"0x10", "- - - -"},
        {"1 2", "- - - -"},
        {"+", "- - - -"},
        {"", "- - - -"},
    };
    for (const auto& row : rows) {
        Load(std::string("[S]\nK=") + row.text + "\n");
        EXPECT_EQ(ReadAll(config, L"K"), row.outcome) << row.text;
    }
    EXPECT_EQ(ReadAll(config, L"Absent"), "- - - -");
}

TEST_F(ConfigFile, LimitsAreIncluded)
{
    Load("[S]\nK=10\n");
    int number = 1;
    EXPECT_TRUE(config.TryGetInt(L"s", L"k", number, 10, 10));
    EXPECT_FALSE(config.TryGetInt(L"S", L"K", number, 11, 20));
    EXPECT_EQ(number, 10);
    EXPECT_EQ(config.GetStringOrUseDefault(L"S", L"K", L"", ExitCode(3), 2, 2), L"10");
    EXPECT_EQ(GetThrown([&] { config.GetStringOrUseDefault(L"S", L"K", L"", ExitCode(3), 3, 9); }), "0:0:3");
    EXPECT_EQ(GetThrown([&] { config.GetStringOrUseDefault(L"S", L"K", L"", ExitCode(3), 0, 1); }), "0:0:3");
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

    const auto refuse = [&](auto read) { return GetThrown([&] { read(L"Text"); }); };
    EXPECT_EQ(refuse([&](const WString& key) { config.GetBoolOrUseDefault(L"Test", key, true, 20); }), "0:0:20");
    EXPECT_EQ(
        refuse([&](const WString& key) { config.GetIntOrUseDefault(L"Test", key, 1, failure, 0, 9); }), "0:505:140");
    EXPECT_EQ(
        refuse([&](const WString& key) { config.GetUIntOrUseDefault(L"Test", key, 1, failure, 0, 9); }), "0:505:140");
    EXPECT_EQ(
        refuse([&](const WString& key) { config.GetDoubleOrUseDefault(L"Test", key, 1, failure, 0, 9); }), "0:505:140");

    config.GetMetaData().Update(L"TEST", L"NUMBER", ConfigDataType::Int, L"How many", -10, INT_MAX, -5);
    config.GetMetaData().Update(L"Test", L"Number", ConfigDataType::Int, nullptr, -10, INT_MAX, 8);
    WStringArray document;
    config.GetMetaData().GetDocument(document);
    EXPECT_EQ(Join(document),
        "[Other]\n"
        "Name: Str, default \"\", length at least 1\n"
        "[test]\n"
        "Count: UInt, default 4000000000\n"
        "Flag: Bool, default true\n"
        "Level: Dbl, default 0.1, at least 0\n"
        "Name: Str, default \"x y\"\n"
        "Number: Int, default 8, at least -10; How many\n"
        "Text: Dbl, default 1, 0 to 9\n"
        "yes: Bool, default false");
    EXPECT_TRUE(config.GetMetaData().TryGet(L"TEST", L"name", item));
    EXPECT_EQ(item.type, ConfigDataType::Str);
    EXPECT_EQ(item.defaultText, L"x y");
    EXPECT_FALSE(config.GetMetaData().TryGet(L"Test", L"None", item));
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
        "; head\n\n\n[Ä]\n\n; first\nMaß=5\n\n; second\nKey=2\n\n\n[B]\n\n\n"
        "[New]\nGröße=%s=;x\n; Off=1\n");
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
    const std::string link = folder.Path("link");
    fs::permissions(target, fs::perms(0640));
    fs::create_symlink("target", link);
    config.Load(link);
    config.SetString(L"S", L"K", L"2");
    config.Save();
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(folder.Read("target"), "[S]\nK=2\n");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms(0640));
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.GetPath()), {}), 3) << "temporary files are left";
}

TEST_F(ConfigFile, NamesThatAFileCannotHoldAreRefused)
{
    Load("[S]\nK=1\n");
    const struct
    {
        const wchar_t* section;
        const wchar_t* key;
        const wchar_t* value;
    } rows[] = {
        {L"S]", L"K", L"2"},
        {L"S\nT", L"K", L"2"},
        {L"S", L"K=", L"2"},
        {L"S", L"K\rL", L"2"},
        {L"S", L"", L"2"},
        {L"S", L" ", L"2"},
        {L"S", L";K", L"2"},
        {L"S", L"#K", L"2"},
        {L"S", L" [K", L"2"},
        {L"S", L"K", L"2\nX=3"},
    };
    for (const auto& row : rows) {
        const std::string names = (WString(L"[") + row.section + L"] " + row.key).ToUtf8();
        EXPECT_EQ(GetThrown([&] { config.SetString(row.section, row.key, row.value); }),
            "0:1:8 Wrong arguments: the settings file cannot hold " + names);
    }
    config.Save();
    EXPECT_EQ(folder.Read("Config.ini"), "[S]\nK=1\n");
}

TEST_F(ConfigFile, LoadingOddFiles)
{
    Load("\xEF\xBB\xBF[S]\r\n K = 1 \r\nno value\r\n=2\r\nL=\xFF\r\nk=3");
    WStringArray keys;
    config.GetKeys(L"S", keys);
    EXPECT_EQ(Join(keys), "K\nL");
    EXPECT_EQ(config.GetStringOrUseDefault(L"S", L"K", L"", ExitCode(1), 0, -1), L"3");
    EXPECT_EQ(config.GetStringOrUseDefault(L"S", L"L", L"", ExitCode(1), 0, -1), L"\xFFFD");

    EXPECT_EQ(GetThrown([&] { Load("[T]\n\n[S\nX=1\n"); }),
        "0:1:10 File error: " + folder.Path("Config.ini") + ": line 3: missing ]");
    EXPECT_EQ(GetThrown([&] { config.Load(folder.GetPath()); }),
        "0:1:10 File error: " + folder.GetPath() + ": Is a directory");
    EXPECT_EQ(GetThrown([&] { Load(std::string("[T]\0\nX=1", 8)); }),
        "0:1:10 File error: " + folder.Path("Config.ini") + ": not a text file");
    EXPECT_TRUE(config.Contains(L"S", L"K")) << "a failed load changes nothing";

    config.Load(folder.Path("absent/Config.ini"));
    EXPECT_FALSE(config.Contains(L"S", L"K"));
    EXPECT_EQ(GetThrown([&] { config.Save(); }),
        "0:1:10 File error: " + folder.Path("absent/Config.ini") + ": No such file or directory");
}

TEST_F(ConfigFile, AFileThatSeveralProcessesSaveIsNeverTorn)
{
    const std::string path = folder.Path("Config.ini");
    const std::string longText(20000, 'x');
    const auto saveOften = [&path](const std::string& text) {
        ConfigFileData mine;
        for (int i = 0; i < 40; ++i) {
            mine.Load(path);
            mine.SetString(L"S", L"K", WString::FromUtf8(text));
            mine.Save();
        }
        return true;
    };
    Load("[S]\nK=y\n");
    ChildProcess first([&] { return saveOften(longText); });
    ChildProcess second([&] { return saveOften("y"); });
    for (int i = 0; i < 200; ++i) {
        const std::string text = folder.Read("Config.ini");
        ASSERT_TRUE(text == "[S]\nK=y\n" || text == "[S]\nK=" + longText + "\n") << text.size();
    }
    EXPECT_TRUE(first.Wait());
    EXPECT_TRUE(second.Wait());
}
