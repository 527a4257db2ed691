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
    EEFunction bare(L"bare", 1);
    EXPECT_EQ(ThrownBy([&] { bare.Evaluate(result, arguments, nullptr); }),
        "144 Incorrect function Evaluate overload function is invoked @3");
}
