#include "ExpressionEvaluatorFunctions.h"
#include "Support/Expressions.h"
#include "Support/TestFiles.h"

#include <set>

namespace {
std::string WithoutMarks(std::string call)
{
    std::erase(call, '*');
    return call;
}

/// Puts errors in the place of each argument that is not marked.
void CheckErrors(const std::string& call)
{
    std::size_t end = call.find('(') - 1;
    for (std::size_t start = end + 2; end < call.size() - 1; start = end + 2) {
        end = std::min(call.find(", ", start), call.size() - 1);
        if (call[start] == '*')
            continue;
        const std::string head = WithoutMarks(call.substr(0, start));
        const std::string tail = WithoutMarks(call.substr(end));
        const std::size_t place = head.size() + 1;
        const auto outcome = [&](const char* argument) { return Outcome(std::string(head).append(argument) + tail); };
        EXPECT_EQ(outcome("1/0"), "133 Divide by zero @" + std::to_string(place + 2)) << call;
        EXPECT_EQ(outcome("kaka"), "48 Missing variable: kaka @" + std::to_string(place)) << call;
    }
}
} // namespace

TEST(Functions, EndInTheErrorOfAnArgument)
{
    std::set<std::string> called;
    for (const std::string& line : ReadTestLines("Functions/SampleCalls.txt")) {
        if (line.starts_with("//"))
            continue;
        const std::string name = line.substr(0, line.find('('));
        EXPECT_TRUE(called.insert(name).second) << name << " is called twice in SampleCalls.txt";
        if (fnTable_gb.FindOrNull(WString::FromUtf8(name).View()))
            CheckErrors(line);
        else
            ADD_FAILURE() << "SampleCalls.txt calls " << name
                          << ", which is not in the table: add its row to FunctionRows.cpp";
    }
    WStringArray functions{L"left from before"};
    fnTable_gb.GetSupportedFunctions(functions);
    for (const WString& function : functions)
        if (!called.contains(function.ToUtf8()))
            ADD_FAILURE() << "SampleCalls.txt does not call " << function.ToUtf8() << ": add a line with a call of it";
}
