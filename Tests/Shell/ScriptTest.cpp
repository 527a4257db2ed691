// Runs every script of Tests/Scripts and of Examples/Scripts by labsh and compares what comes out with what comments of
// the script say:
//
//     # out: a line of standard output
//     # err: a line of standard error
//     # status: 1
//     # options: -k
//
// All lines of standard output and of standard error must be named, each kind in its order; one blank behind the colon
// is no part of the line. Of times the form counts alone. The exit status is 0 and the options of labsh are none unless
// given. A script runs in a new folder, with a data folder of its own, among copies of the other scripts and of their
// parts in Tests/Scripts/Parts.

#include "Shell/Labsh.h"
#include "Support/TestFiles.h"
#include "Support/Times.h"

#include <gtest/gtest.h>

namespace {
namespace fs = std::filesystem;

struct Expectations
{
    std::string output;
    std::string errors;
    std::string status = "0";
    std::vector<std::string> options;
};

Expectations ReadExpectations(const fs::path& script)
{
    Expectations expected;
    for (const std::string& line : ReadTestLines(script)) {
        std::string text;
        const auto is = [&](const std::string& mark) {
            if (!line.starts_with(mark))
                return false;
            text = line.substr(std::min(mark.size() + 1, line.size()));
            return true;
        };
        if (is("# out:"))
            expected.output += text + "\n";
        else if (is("# err:"))
            expected.errors += text + "\n";
        else if (is("# status:"))
            expected.status = text;
        else if (is("# options:"))
            expected.options.push_back(text);
    }
    return expected;
}

std::vector<fs::path> ListScripts()
{
    std::vector<fs::path> scripts = ListTestFiles("Scripts");
    std::ranges::copy(ListTestFiles("../Examples/Scripts"), std::back_inserter(scripts));
    std::erase_if(scripts, [](const fs::path& path) { return path.extension() != ".txt"; });
    return scripts;
}
} // namespace

class ScriptTest : public testing::TestWithParam<fs::path>
{};

TEST_P(ScriptTest, GivesWhatItSays)
{
    const Expectations expected = ReadExpectations(GetParam());
    std::vector<std::string> arguments = expected.options;
    arguments.insert(arguments.end(), {"-f", GetParam().filename()});
    Labsh labsh;
    fs::copy(GetParam().parent_path(), labsh.folder.GetPath(), fs::copy_options::recursive);
    EXPECT_EQ(std::to_string(labsh.Run(arguments)), expected.status);
    EXPECT_EQ(HideTimes(labsh.GetOutput()), HideTimes(expected.output));
    EXPECT_EQ(labsh.GetErrors(), expected.errors);
}

INSTANTIATE_TEST_SUITE_P(Scripts, ScriptTest, testing::ValuesIn(ListScripts()),
    [](const testing::TestParamInfo<fs::path>& script) { return script.param.stem().string(); });
