#include "EvaluatorErrors.h"
#include "ExpressionEvaluatorException.h"
#include "ExpressionEvaluatorFunctions.h"
#include "Support/Expressions.h"

namespace {
/// What a call with one argument at position 5 and one at 7 raises, as "number message @position".
template <typename Call>
std::string Raised(Call call)
{
    EETokenStack arguments;
    for (const int position : {5, 7}) {
        EEToken argument;
        argument.SetValue(4.0);
        argument.SetPosition(position);
        arguments.Put(argument);
    }
    EEToken result;
    result.SetPosition(3);
    try {
        call(result, arguments);
        return "nothing";
    } catch (const ExpressionEvaluatorException& exception) {
        return std::to_string(exception.GetCode()) + " " + exception.GetMessage().ToUtf8() + " @" +
            std::to_string(exception.GetPosition());
    }
}
} // namespace

TEST(FunctionTable, ErrorsThatNoExpressionReaches)
{
    const auto table = [](const wchar_t* name) {
        return Raised(
            [=](EEToken& result, EETokenStack& arguments) { fnTable_gb.Evaluate(result, name, arguments, nullptr); });
    };
    EXPECT_EQ(table(L"SQRT"), "116 sqrt requires 1 parameter @7");
    EXPECT_EQ(table(L"noSuch"), "200 Unknown function noSuch @0");

    EEFunction bare(L"bare", 1);
    EXPECT_EQ(Raised([&](EEToken& result, EETokenStack& arguments) { bare.Evaluate(result, arguments, nullptr); }),
        "144 Incorrect function Evaluate overload function is invoked @3");
}

TEST(FunctionTable, KnowsItsFunctionsInAnyCase)
{
    int count = 0;
    EXPECT_TRUE(fnTable_gb.IsFunction(L"vErSiOnCoMpArE", &count));
    EXPECT_EQ(count, 2);
    EXPECT_TRUE(fnTable_gb.IsFunction(L"sum", nullptr));
    EXPECT_FALSE(fnTable_gb.IsFunction(L"", &count));

    WStringArray names;
    names.Add(L"left from before");
    fnTable_gb.GetSupportedFunctions(names);
    EXPECT_EQ(names.Count(), 89u);
}
