#include "ExpressionEvaluatorFunctions.h"
#include "Support/ThrownError.h"
#include "Support/Tokens.h"

#include <gtest/gtest.h>

TEST(FunctionTable, ErrorsThatNoExpressionReaches)
{
    EETokenStack arguments;
    for (const int position : {5, 7})
        arguments.Put(Operand(4.0, position));
    EEToken result = Operand(0.0, 3);
    const auto call = [&](const wchar_t* name) {
        return ThrownBy([&] { fnTable_gb.Evaluate(result, name, arguments, nullptr); });
    };
    EXPECT_EQ(call(L"SQRT"), "116 sqrt requires 1 parameter @7");
    EXPECT_EQ(call(L"noSuch"), "200 Unknown function noSuch @0");
    EXPECT_EQ(call(nullptr), "200 Unknown function  @0");
    EXPECT_FALSE(fnTable_gb.IsFunction(nullptr, nullptr));
    EEFunction bare(L"bare", 1);
    EXPECT_EQ(ThrownBy([&] { bare.Evaluate(result, arguments, nullptr); }),
        "144 Incorrect function Evaluate overload function is invoked @3");
}

TEST(FunctionTable, GetEnvWithoutAnEvaluatorGivesItsDefault)
{
    EETokenStack arguments;
    arguments.Put(Operand(L"name"));
    arguments.Put(Operand(4.0));
    EEToken result;
    fnTable_gb.Evaluate(result, L"GetEnv", arguments, nullptr);
    EXPECT_EQ(result.ToString(), L"4");
}
