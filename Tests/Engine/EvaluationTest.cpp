#include "ExpressionEvaluatorFunctions.h"
#include "Support/Expressions.h"
#include "Support/HostTexts.h"
#include "Support/Tokens.h"
#include "Text/Abort.h"

namespace {
std::string EvaluateTokens(std::initializer_list<EEToken> tokens)
{
    EETokenStack postfix;
    for (const EEToken& token : tokens)
        postfix.Put(token);
    ExpressionEvaluator evaluator(nullptr, 0);
    EEToken result;
    return evaluator.EvaluatePostfixExpr(result, postfix) ? DescribeValue(result) : DescribeError(evaluator);
}
} // namespace

TEST(Evaluation, PostfixThatNoExpressionGives)
{
    const EEToken one = Operand(1.0, 3);
    const EEToken two = Operand(2.0, 5);
    const EEToken separator(TT_PRMSEP, L',', 0);
    const EEToken call(TT_PRMLIST, L'|', 4);
    EEToken function(TT_FUNCOP, L"max");
    function.SetPosition(7);

    EXPECT_EQ(EvaluateTokens({}), "9 Stack empty @0");
    EXPECT_EQ(EvaluateTokens({one, EEToken(TT_BINARYOP, L'+', 2)}), "9 Stack empty @0");
    EXPECT_EQ(EvaluateTokens({one, two}), "126 Unexpected token encountered @3");
    EXPECT_EQ(EvaluateTokens({one, separator}), "127 Unexpected end of sub expression @0");
    EXPECT_EQ(EvaluateTokens({one, function}), "127 Unexpected end of sub expression @0");
    EXPECT_EQ(EvaluateTokens({one, EEToken(TT_BINARYOP, L'$', 2)}), "10 Invalid character @2");
    EXPECT_EQ(EvaluateTokens({one, EEToken(TT_BINARYOP, L"<<")}), "11 Invalid binary operator @0");
    EXPECT_EQ(EvaluateTokens({one, EEToken(TT_UNARYOP, L"++")}), "12 Invalid function @0");
    EXPECT_EQ(EvaluateTokens({one, EEToken(TT_END, L"")}), "1")
        << "a token of another type and no single character is skipped";
    EXPECT_EQ(EvaluateTokens({call, one}), "14 Internal Error, EvaluatePostfixSubExpr expected TT_FUNCOP @4");
    EXPECT_EQ(EvaluateTokens({call, one, two, function}), "126 Unexpected token encountered @3");
}

TEST(Evaluation, CallsNestUpTo200LevelsInAnyPostfix)
{
    EETokenStack postfix;
    for (int position = 1; position <= 300000; ++position)
        postfix.Put(EEToken(TT_PRMLIST, L'|', position));
    ExpressionEvaluator evaluator(nullptr, 0);
    EEToken result;
    EXPECT_FALSE(evaluator.EvaluatePostfixExpr(result, postfix));
    EXPECT_EQ(DescribeError(evaluator), "513 Expression is nested too deeply @201");
    EXPECT_EQ(Outcome(evaluator, "abs(-1)"), "1") << "the levels have been given back";
}

TEST(Evaluation, LongTextsAreComparedToTheirEnd)
{
    const WString text(2 * Abort::interval + 1, L'a');
    std::wstring other(text.Length(), L'A');
    const auto compare = [&] {
        return EvaluateTokens({Operand(text), Operand(WString(other)), EEToken(TT_BINARYOP, L'=', 0)});
    };
    EXPECT_EQ(compare(), "TRUE");
    for (const std::size_t at : {std::size_t{0}, Abort::interval, other.size() - 1}) {
        other[at] = L'B';
        EXPECT_EQ(compare(), "FALSE") << at;
        other[at] = L'A';
    }
}

TEST(Evaluation, LoopsOverTokensNoticeAnAbort)
{
    const std::string many = "1" + Repeat("+1", 1000);
    EETokenStack postfix;
    ExpressionEvaluator evaluator(nullptr, 0);
    ASSERT_TRUE(evaluator.Infix2Postfix(WString::FromUtf8(many), postfix));
    Abort::Request();
    EEToken result;
    EXPECT_EQ(GetThrown([&] { evaluator.EvaluatePostfixExpr(result, postfix); }), "0:1:4 Aborted");
    EXPECT_EQ(Outcome(evaluator, many), "0:1:4 Aborted @0");
    EETokenStack numbers;
    numbers.Put(Operand(1.0));
    for (const wchar_t* function : {L"Sum", L"Max", L"Min", L"Median", L"StrCat"})
        EXPECT_EQ(GetThrown([&] { fnTable_gb.Evaluate(result, function, numbers, nullptr); }), "0:1:4 Aborted");
    Abort::Clear();
}
