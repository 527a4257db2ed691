#include "EEToken.h"
#include "Support/ThrownError.h"
#include "Support/Tokens.h"

#include <gtest/gtest.h>

TEST(ErrorsTest, AMessageQuotesTheToken)
{
    const EEToken token = Operand(L"50%t");
    const ExpressionEvaluatorException error(10, L"'%t' is not '%T', %s", &token, 3);
    EXPECT_EQ(ThrownBy([&] { throw error; }), "10 '50%t' is not '50%t', %s @3");
}

TEST(ErrorsTest, APrefixIsNeverPutTwice)
{
    const auto thrown = [](const wchar_t* name) {
        return ThrownBy([&] { throw EEMissingVariableException(name, 5); });
    };
    EXPECT_EQ(thrown(L"x"), "missing x: 48 Missing variable: x @5");
    EXPECT_EQ(thrown(L"Missing variable: x"), "missing x: 48 Missing variable: x @5");
    EXPECT_EQ(
        thrown(L"missing variable: x"), "missing missing variable: x: 48 Missing variable: missing variable: x @5");
    EXPECT_EQ(thrown(L""), "missing : 48 Missing variable:  @5");
}

TEST(ErrorsTest, AnExitCodeIsThrownInAnyCase)
{
    EXPECT_EQ(ThrownBy([] { CheckAndThrowExitCode(ExitCode(0, 505, 133)); }), "exit code 0:505:133");
    EXPECT_EQ(ThrownBy([] { CheckAndThrowExitCode(ExitCode(7, 8, 0)); }), "exit code 0:505:132");
}
