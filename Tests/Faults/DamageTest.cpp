#include "Shell/AtTerminal.h"
#include "Shell/Labsh.h"
#include "Support/TestFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {
/// What may become of the bytes of a file.
struct Damage
{
    const char* name;
    std::function<void(std::string& bytes)> apply;
};

std::mt19937 random_lc; // which is the same in each run

std::size_t DrawPlace(const std::string& bytes)
{
    return random_lc() % std::max<std::size_t>(bytes.size(), 1);
}

void Flip(std::string& bytes)
{
    if (bytes.empty())
        return;
    char& byte = bytes[DrawPlace(bytes)];
    byte = static_cast<char>(byte ^ 1 << random_lc() % 8);
}

void Cut(std::string& bytes)
{
    bytes.resize(DrawPlace(bytes));
}

void Widen(std::string& bytes)
{
    std::string wide = "\xFF\xFE";
    for (const char byte : bytes)
        wide += {byte, '\0'};
    bytes = wide;
}

const Damage damages_lc[] = {
    {"empty", [](std::string& bytes) { bytes.clear(); }},
    {"cut", Cut},
    {"cut", Cut},
    {"cut", Cut},
    {"a byte short", [](std::string& bytes) { bytes.resize(bytes.size() - std::min<std::size_t>(bytes.size(), 1)); }},
    {"a flip", Flip},
    {"a flip", Flip},
    {"a flip", Flip},
    {"many flips", [](std::string& bytes) { std::ranges::for_each(std::string(50, ' '), [&](char) { Flip(bytes); }); }},
    {"zeros", [](std::string& bytes) { bytes.replace(DrawPlace(bytes), 512, std::string(512, '\0')); }},
    {"noise", [](std::string& bytes) { std::ranges::generate(bytes, [] { return static_cast<char>(random_lc()); }); }},
    {"UTF-16", Widen},
    {"a huge line", [](std::string& bytes) { bytes.insert(DrawPlace(bytes), std::string(0x200000, 'x')); }},
};

/// What may stand in the place of a file, and what is said of it.
struct Replacement
{
    std::function<void(const std::string& path)> make;
    const char* reason; // none for a file that is merely not there
};

const Replacement replacements_lc[] = {
    {[](const std::string& path) { fs::create_directory(path); }, "(Is a directory|Not a regular file)"},
    {[](const std::string& path) { mkfifo(path.c_str(), 0600); }, "Not a regular file"},
    {[](const std::string& path) { fs::create_symlink("/dev/zero", path); }, "Not a regular file"},
    {[](const std::string& path) { fs::create_symlink(path, path); }, "Too many levels of symbolic links"},
    {[](const std::string& path) { fs::create_symlink(path + ".absent", path); }, nullptr},
};

struct DataFile
{
    const char* name;
    const char* query;
    const char* set;
    bool isText = true;
};

const DataFile files_lc[] = {
    {"Config.ini", "Config [Own]Kept", "Config -n [Own]New=3"},
    {"Status.ini", "Status Kept", "Status -n New=3"},
    {"Usage.db", "Usage Kept", "Usage New=3", false},
    {"ErrorLog.txt", "Log", "If true Then Assert -q 1=3"},
    {"EELog.txt", "Log EELog", "Set New=3"},
};

class DamageTest : public testing::TestWithParam<DataFile>
{
protected:
    Labsh labsh;
    const std::string data = labsh.folder.Path("data");
    const std::string path = data + "/" + GetParam().name;

    /// A bench with something in each file.
    void Make()
    {
        fs::remove_all(data);
        ASSERT_EQ(labsh.Run({"-k"},
                      "Usage Kept=7\nConfig -n [Own]Kept=7\nStatus -n Kept=7\nLog -e EELog\nCalc -q 1+2\n"
                      "If true Then Assert -q 1=2\n"),
            0);
    }
    std::string Run(const std::string& line)
    {
        const int status = labsh.Run({"--", line});
        return labsh.GetOutput() + "exit " + std::to_string(status);
    }
    /// What a log becomes when it is full.
    std::string GetOlder() const { return data + "/" + fs::path(GetParam().name).stem().string() + ".old.txt"; }
    /// The warnings of the last run.
    std::vector<std::string> ListWarnings() const
    {
        std::vector<std::string> warnings;
        std::istringstream lines(labsh.GetErrors());
        for (std::string line; std::getline(lines, line);)
            if (line.starts_with("labsh: warning: "))
                warnings.push_back(line);
        return warnings;
    }
};
} // namespace

TEST_P(DamageTest, LeavesTheShellWorkingAndWhatItWasKept)
{
    for (const Damage& damage : damages_lc) {
        Make();
        std::string bytes = TemporaryFolder::ReadFile(path);
        damage.apply(bytes);
        labsh.folder.Write("data/" + std::string(GetParam().name), bytes);
        EXPECT_EQ(Run("Calc 1+2"), "3\nexit 0");
        const std::vector<std::string> warnings = ListWarnings();
        EXPECT_THAT(warnings, testing::Each(testing::HasSubstr(path)));
        const bool isKept = Run(GetParam().query).ends_with("=7\nexit 0");
        const std::string aside = path + ".damaged1";
        if (fs::exists(aside)) {
            EXPECT_EQ(TemporaryFolder::ReadFile(aside), bytes);
        } else {
            EXPECT_TRUE(isKept || GetParam().isText) << "lost in silence";
        }
        EXPECT_EQ(fs::exists(aside), !GetParam().isText && !warnings.empty() && !isKept);
        EXPECT_THAT(Run(GetParam().set), testing::EndsWith("exit 0")) << labsh.GetErrors();
        const std::string after = TemporaryFolder::ReadFile(path) + TemporaryFolder::ReadFile(GetOlder());
        std::istringstream lines(bytes);
        for (std::string line; GetParam().isText && std::getline(lines, line);)
            EXPECT_NE(after.find(line), after.npos) << line.substr(0, 100);
        if (HasFailure())
            FAIL() << damage.name;
    }
}

TEST_P(DamageTest, AnotherThingInItsPlaceIsNamed)
{
    const bool isLog = std::string(GetParam().name).ends_with("Log.txt"); // which nobody hears of until he asks for it
    for (const auto& [replace, reason] : replacements_lc) {
        Make();
        fs::remove(path);
        replace(path);
        const testing::Matcher<std::string> isNamed =
            testing::ContainsRegex(reason ? "File error: (" + path + "|/dev/zero): " + reason : "");
        const testing::Matcher<std::string> isSilent = "";
        EXPECT_EQ(Run("Calc 1+2"), "3\nexit 0");
        EXPECT_THAT(labsh.GetErrors(), isLog ? isSilent : isNamed);
        EXPECT_TRUE(Run(GetParam().query).ends_with("exit 0") || !labsh.GetErrors().empty());
        EXPECT_EQ(Run(GetParam().set).ends_with("exit 0"), isLog || !reason);
        EXPECT_TRUE(isLog || testing::Value(labsh.GetErrors(), isNamed)) << labsh.GetErrors();
        std::error_code ignored;
        EXPECT_EQ(fs::is_regular_file(path, ignored), !reason);
    }
}

TEST(DamagedHistory, LetsThePromptWork)
{
    for (const auto& [replace, reason] : replacements_lc) {
        const TemporaryFolder folder;
        replace(folder.Path("History.txt"));
        AtPrompt session(folder.GetPath());
        EXPECT_THAT(session.Run("Calc 1+2"), testing::EndsWith("3\n"));
    }
    for (const Damage& damage : damages_lc) {
        const TemporaryFolder folder;
        std::string bytes = "Calc 1\nCalc 2\n";
        damage.apply(bytes);
        folder.Write("History.txt", bytes);
        AtPrompt session(folder.GetPath());
        EXPECT_EQ(session.Run("Calc 1+2"), "3\n") << damage.name;
        EXPECT_THAT(
            folder.Read("History.txt"), testing::AllOf(testing::StartsWith(bytes), testing::EndsWith("Calc 1+2\n")))
            << damage.name;
    }
}

INSTANTIATE_TEST_SUITE_P(Files, DamageTest, testing::ValuesIn(files_lc),
    [](const auto& test) { return fs::path(test.param.name).stem().string(); });
