#include "Support/Expressions.h"

TEST(Tokenizer, RowsThatAFileCannotHold)
{
    CheckExpressions({
        {std::string(400, '9') + "-1", "149 Number is infinite @401"},
        {"0." + std::string(400, '0') + "1*0+1", "1"},
        {"LF=\"\n\"", "TRUE"},
        {"1\n+2", "38 Invalid character @2"},
        {"1\r", "38 Invalid character @2"},
        {std::string(70, 'F') + "(1)", "201 Unknown function: " + std::string(63, 'f') + " @1"},
        {R"("a" & LF)", "'a\n'"},
    });
    EXPECT_NE(Outcome("RND"), Outcome("RND")) << "each reading draws anew";
}

TEST(Tokenizer, TheLongestStringHasAThousandCharacters)
{
    const std::string longest(1000, 'x');
    EXPECT_EQ(Outcome("\"" + longest + "\""), "'" + longest + "'");
    EXPECT_EQ(Outcome("\"" + longest + "x\""), "35 String too long @1001");
    EXPECT_EQ(Outcome("\"" + longest), "36 Missing \", unexpected end of string @1001");
    EXPECT_EQ(Outcome("Len(\"" + std::string(500, 'x') + std::string(1000, '\\') + "\")"), "1000");
}

TEST(Tokenizer, NamesHaveUpTo63Characters)
{
    const std::string name(63, 'n');
    CheckExpressions({
        {name + "+0", "48 Missing variable: " + name + " @1"},
        {"1+" + name + "n", "39 Variable name is too long @2"},
    });
}

TEST(Tokenizer, AVariableShadowsABuiltInName)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.SetVariable(L"Pi", 3.0);
    EXPECT_EQ(Outcome(evaluator, "PI+pI"), "6");

    ExpressionEvaluator withoutE(nullptr, EvaluatorFlags::noConstantE);
    EXPECT_EQ(Outcome(withoutE, "e+1"), "48 Missing variable: e @1");
    EXPECT_EQ(Outcome(withoutE, "abs(e)"), "48 Missing variable: e @5");
}

TEST(Tokenizer, OtherSetsOfNameCharacters)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.SetVariable(L"ä&", 5.0);
    evaluator.SetValidChars(L"ä&+");
    EXPECT_EQ(Outcome(evaluator, "Ä&+1"), "6") << "both cases belong to the set, \"+\" does not";
    EXPECT_EQ(Outcome(evaluator, "a"), "38 Invalid character @1");
    evaluator.Clear();
    EXPECT_EQ(Outcome(evaluator, "IsNA(a)"), "TRUE");
}
