// Evaluates every line of the files in Tests/Expressions, "expression => outcome", by several routes that must agree.
// Outcomes are written as in Support/Expressions.h; a line that begins with "//" is a comment.

#include "Shell/Labsh.h"
#include "Support/ExpressionFile.h"

namespace {
namespace fs = std::filesystem;

bool IsValue(const std::string& expression)
{
    EEToken value;
    return ExpressionEvaluator(nullptr, 0).TryEvaluate(WString::FromUtf8(expression), value);
}
} // namespace

class ExpressionFilesTest : public testing::TestWithParam<fs::path>
{};

TEST_P(ExpressionFilesTest, GiveWhatTheySayInAFreshAndInAReusedEvaluator)
{
    ExpressionEvaluator reused(nullptr, 0);
    const std::vector<ExpressionRow> rows = ReadRows(GetParam());
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

INSTANTIATE_TEST_SUITE_P(Expressions, ExpressionFilesTest, testing::ValuesIn(ListTestFiles("Expressions")),
    [](const testing::TestParamInfo<fs::path>& file) { return file.param.stem().string(); });
