#include "Instrument/System.h"
#include "Support/Expressions.h"

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
    const std::set<double> wide = Draw("Rand(-9e9, 9e9)", 100); // saturated to the 32-bit limits
    EXPECT_LT(*wide.begin(), -1e9);
    EXPECT_GT(*wide.rbegin(), 1e9);
}
