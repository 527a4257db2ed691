// Evaluates every line of the files in Tests/Expressions, "expression => outcome", by several routes that must agree.
// Outcomes are written as in Support/Expressions.h; a line that begins with "//" is a comment.

#include "Shell/Labsh.h"
#include "Support/Expressions.h"

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {
namespace fs = std::filesystem;

std::vector<ExpressionRow> ReadRows(const fs::path& file)
{
    const std::string arrow = " => ";
    std::vector<ExpressionRow> rows;
    std::istringstream lines(TemporaryFolder::ReadFile(file));
    for (std::string line; std::getline(lines, line);) {
        const std::size_t at = line.find(arrow);
        if (at != std::string::npos && !line.starts_with("//"))
            rows.push_back({line.substr(0, at), line.substr(at + arrow.size())});
    }
    return rows;
}

bool IsValue(const std::string& expression)
{
    EEToken value;
    return ExpressionEvaluator(nullptr, 0).TryEvaluate(WString::FromUtf8(expression), value);
}

std::vector<fs::path> ListFiles()
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(SOURCE_DIR "/Tests/Expressions"))
        files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}
} // namespace

class ExpressionFilesTest : public testing::TestWithParam<fs::path>
{};

TEST_P(ExpressionFilesTest, GiveWhatTheySayInAFreshAndInAReusedEvaluator)
{
    ExpressionEvaluator reused(nullptr, 0);
    const std::vector<ExpressionRow> rows = ReadRows(GetParam());
    EXPECT_FALSE(rows.empty());
    for (const ExpressionRow& row : rows) {
        EXPECT_EQ(Outcome(row.expression), row.outcome) << row.expression;
        EXPECT_EQ(Outcome(reused, row.expression), row.outcome) << row.expression;
    }
}

TEST_P(ExpressionFilesTest, GiveTheSameValuesAsFunctionArgumentsAndThroughTheShell)
{
    std::string script;
    std::string expected;
    for (const ExpressionRow& row : ReadRows(GetParam())) {
        if (!IsValue(row.expression))
            continue;
        EXPECT_EQ(Outcome("IF(1=1, " + row.expression + ", 0)"), row.outcome) << row.expression;
        script += "Calc -- " + row.expression + "\n";
        const bool quoted = row.outcome.starts_with("'");
        expected += (quoted ? row.outcome.substr(1, row.outcome.size() - 2) : row.outcome) + "\n";
    }
    EXPECT_EQ(Labsh({"-k"}, script).Finish(), expected + "exit 0");
}

INSTANTIATE_TEST_SUITE_P(Expressions, ExpressionFilesTest, testing::ValuesIn(ListFiles()),
    [](const testing::TestParamInfo<fs::path>& file) { return file.param.stem().string(); });
