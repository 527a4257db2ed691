#pragma once

#include "Commands/TestCommand.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorException.h"

#include <span>

/// The parts of the self-test, a file each, and what they share.
namespace SelfTest {
void TestLanguage(TestCommand& test);
void TestFunctions(TestCommand& test);
void TestInstrument(TestCommand& test);
void TestValues(TestCommand& test);
void TestEvaluator(TestCommand& test);
void TestCommands(TestCommand& test);
void TestPlugin(TestCommand& test);

/// What goes in and what must come out. The texts of tables are in UTF-8, which takes a quarter of the room.
struct Row
{
    const char* input;
    const char* outcome;
};

/// Numbers and booleans as they print, texts in single quotes.
WString DescribeValue(const EEToken& value);
/// "number message @position"; instead of the number the exit code when it is not the evaluator's.
WString DescribeError(const ExpressionEvaluator& evaluator);
/// The value or the error of the expression.
WString Outcome(ExpressionEvaluator& evaluator, const WString& expression);
void CheckRows(TestCommand& test, ExpressionEvaluator& evaluator, std::span<const Row> rows);
/// Each row with an evaluator of its own, which reads no environment.
void CheckRows(TestCommand& test, std::span<const Row> rows);

WString Repeat(const WString& text, int count);

/// The error that `action` throws, as DescribeError writes it; "nothing" when it returns.
template <typename Action>
WString ThrownBy(const Action& action)
{
    try {
        action();
    } catch (const ExpressionEvaluatorException& error) {
        return WString::Format(L"%u %s @%d", error.GetCode(), error.GetMessage(), error.GetPosition());
    } catch (const ExitCode& code) {
        return code.ToString();
    }
    return L"nothing";
}
} // namespace SelfTest
