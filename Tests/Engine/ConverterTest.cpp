#include "Support/Expressions.h"
#include "Support/HostTexts.h"

namespace {
std::string Postfix(const std::string& expression)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EETokenStack postfix;
    return evaluator.Infix2Postfix(WString::FromUtf8(expression), postfix) ? postfix.ToString(false).ToUtf8()
                                                                           : DescribeError(evaluator);
}
} // namespace

TEST(Converter, OrdersOperatorsByPriority)
{
    const struct
    {
        const char* infix;
        const char* postfix;
    } rows[] = {
        {"10+5*2+2/4", "10 5 2 * + 2 4 / + "},
        {"2^3^2", "2 3 2 ^ ^ "},
        {"-2^2", "2 ± 2 ^ "},
        {"2^-2", "2 2 ± ^ "},
        {"1-2-3", "1 2 - 3 - "},
        {"1 or 2 and 3 = 4 & 5", "1 2 or 3 4 5 & = and "},
        {"+(1+2)*3", "1 2 + 3 * "},
        {"-(-1)", "1 ± ± "},
        {"mod(1+2,-3)*4", "| 1 2 + , 3 ± mod 4 * "},
        {"AVG(1,2)/2+SUM(3)", "| 1 , 2 avg 2 / | 3 sum + "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(Postfix(row.infix), row.postfix) << row.infix;
}

TEST(Converter, CallsNestUpTo200Levels)
{
    EXPECT_EQ(Outcome(Repeat("abs(", 200) + "-1" + std::string(200, ')')), "1");
    EXPECT_EQ(Outcome(Repeat("abs(", 201) + "-1" + std::string(201, ')')), "513 Expression is nested too deeply @804");
    EXPECT_EQ(Outcome(Repeat("abs(", 100000)), "513 Expression is nested too deeply @804");
    EXPECT_EQ(Outcome("Max(1/0," + Repeat("abs(", 200) + "1" + std::string(201, ')')),
        "513 Expression is nested too deeply @808");
    EXPECT_EQ(Outcome(Repeat("IF(1=1,", 200) + "7" + Repeat(",0)", 200)), "7");
    EXPECT_EQ(Outcome(Repeat("abs(1)+", 500) + "0"), "500") << "calls beside each other do not nest";
}

TEST(Converter, ParenthesesNestWithoutLimit)
{
    const int many = 1000000;
    EXPECT_EQ(Outcome(std::string(many, '(') + "1" + std::string(many, ')')), "1");
    EXPECT_EQ(Outcome(std::string(many, '(')), "17 Operand Expected @1000000");
    EXPECT_EQ(Outcome(std::string(many, '-')), "15 Two consecutive unary operators not allowed @2");
    EXPECT_EQ(Outcome(Repeat("-(", many / 2) + "1" + std::string(many / 2, ')')), "1");
    EXPECT_EQ(Outcome(Repeat("1+", many / 4) + "1"), "250001");
    EXPECT_EQ(Outcome(Repeat("1^", many / 4) + "0"), "1");
}
