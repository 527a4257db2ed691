#include "Support/Expressions.h"
#include "Support/HostTexts.h"

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
