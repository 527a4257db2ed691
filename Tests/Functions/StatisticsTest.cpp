#include "Services/System.h"
#include "Support/Expressions.h"

#include <cmath>
#include <set>

namespace {
std::set<double> Draw(const std::string& expression, int count)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    std::set<double> drawn;
    for (int index = 0; index < count; ++index)
        drawn.insert(evaluator.EvaluateDouble(WString::FromUtf8(expression)));
    return drawn;
}
} // namespace

TEST(StatisticsFunctions, RandDrawsWholeNumbersBetweenItsBounds)
{
    System::random.Seed(1);
    EXPECT_EQ(Draw("Rand(-1, 2)", 200), (std::set<double>{-1, 0, 1, 2}));
    EXPECT_EQ(Draw("Random(3.9, 1)", 200), (std::set<double>{1, 2, 3}));
    EXPECT_EQ(Draw("Random(1, 6, 3)", 500), (std::set<double>{1, 2, 4, 5, 6}));
    EXPECT_EQ(Draw("Rand(1, 2, 1)", 100), (std::set<double>{2}));
    EXPECT_EQ(Draw("Rand(1, 2, 9)", 100), (std::set<double>{1, 2}));
    for (const double drawn : Draw("Rand(-9e9, 9e9)", 100))
        EXPECT_TRUE(drawn == std::trunc(drawn) && drawn >= -2147483648.0 && drawn <= 2147483647.0) << drawn;
}
