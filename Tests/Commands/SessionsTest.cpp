// Runs the sessions of the files in Tests/Sessions, with the commands of CommandTest:
//
//     // The heading begins a session, with no variables and an empty log
//     > a command line
//     the lines that it writes
//     exit 1045:0:3 and what is told, when it fails
//
// Blank lines before a heading are not looked at.

#include "CommandTest.h"
#include "Support/TestFiles.h"

namespace {
/// A command line, or a heading when it begins with "//", and the lines below it.
struct Step
{
    std::string line;
    std::string output;
};

std::vector<Step> ReadSteps(const std::filesystem::path& file)
{
    const std::string prompt = "> ";
    std::vector<Step> steps;
    for (const std::string& line : ReadTestLines(file)) {
        if (line.starts_with("//"))
            steps.push_back({line, ""});
        else if (line.starts_with(prompt))
            steps.push_back({line.substr(prompt.size()), ""});
        else if (!steps.empty())
            steps.back().output += line + "\n";
    }
    for (Step& step : steps)
        step.output.resize(step.output.find_last_not_of('\n') + 1);
    return steps;
}
} // namespace

class SessionsTest : public CommandTest, public testing::WithParamInterface<std::filesystem::path>
{};

TEST_P(SessionsTest, ShowWhatTheySay)
{
    const std::vector<Step> steps = ReadSteps(GetParam());
    EXPECT_GT(steps.size(), 1u);
    for (const Step& step : steps) {
        if (!step.line.starts_with("//")) {
            EXPECT_EQ(Run(step.line), step.output) << step.line;
            continue;
        }
        environment = Environment();
        Run("Log");
    }
    EXPECT_TRUE(clock.waits.empty());
}

INSTANTIATE_TEST_SUITE_P(Sessions, SessionsTest, testing::ValuesIn(ListTestFiles("Sessions")),
    [](const testing::TestParamInfo<std::filesystem::path>& file) { return file.param.stem().string(); });
