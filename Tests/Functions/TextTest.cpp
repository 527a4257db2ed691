#include "Support/Expressions.h"

TEST(TextFunctions, LargeTexts)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.SetVariable(L"big", WString(1000000, L'a'));
    EXPECT_EQ(Outcome(evaluator, R"(Len(StrReplace(big, "A", "bc")))"), "2000000");
    EXPECT_EQ(Outcome(evaluator, R"(IndexOf(StrCat(big, "b", big), "AB"))"), "999999");
    EXPECT_EQ(Outcome(evaluator, "Len(Right(big & big, 1500000))"), "1500000");
}
