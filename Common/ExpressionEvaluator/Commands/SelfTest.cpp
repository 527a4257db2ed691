#include "SelfTest.h"

#include "EETokenMap.h"
#include "SelfTestParts.h"

namespace SelfTest {
WString DescribeValue(const EEToken& value)
{
    return value.GetDataType() == DT_STR ? L"'" + value.ToString() + L"'" : value.ToString();
}

WString DescribeError(const ExpressionEvaluator& evaluator)
{
    ExitCode code;
    WString message;
    int position = 0;
    if (!evaluator.TryGetErrorMessage(code, message, &position))
        return L"an error without a message";
    const bool own = code.GetCommandId() == 0 && code.GetModule() == 505;
    return WString::Format(
        L"%s %s @%d", own ? WString::Format(L"%u", code.GetNumber()) : code.ToString(), message, position);
}

WString Outcome(ExpressionEvaluator& evaluator, const WString& expression)
{
    EEToken value;
    return evaluator.TryEvaluate(expression, value) ? DescribeValue(value) : DescribeError(evaluator);
}

void CheckRows(TestCommand& test, ExpressionEvaluator& evaluator, std::span<const Row> rows)
{
    for (const Row& row : rows) {
        const WString expression = WString::FromUtf8(row.input);
        Assertion::AreEqual(test, WString::FromUtf8(row.outcome), Outcome(evaluator, expression), expression);
    }
}

void CheckRows(TestCommand& test, std::span<const Row> rows)
{
    for (const Row& row : rows) {
        ExpressionEvaluator evaluator(nullptr, 0);
        CheckRows(test, evaluator, {&row, 1});
    }
}

WString Repeat(const WString& text, int count)
{
    WString repeated;
    for (; count > 0; --count)
        repeated += text;
    return repeated;
}
} // namespace SelfTest

namespace {
/// Keeps a log that is enabled from being filled with the steps of the self-test.
class SilentLog
{
public:
    explicit SilentLog(LogFile& log) : log(log), wasEnabled(log.IsEnabled()) { log.SetEnabled(false); }
    ~SilentLog() { log.SetEnabled(wasEnabled); }
    SilentLog(const SilentLog&) = delete;
    SilentLog& operator=(const SilentLog&) = delete;

private:
    LogFile& log;
    const bool wasEnabled;
};
} // namespace

void RunExpressionEvaluatorTests(TestCommand& test)
{
    const SilentLog silence(eeLog_gb);
    const int tokenCount = GetDebugObjectCountExpressionEvaluator_EEToken();
    const int mapCount = GetDebugObjectCountExpressionEvaluator_CTokenMap();
    for (const auto& part : {SelfTest::TestLanguage, SelfTest::TestFunctions, SelfTest::TestInstrument,
             SelfTest::TestValues, SelfTest::TestEvaluator, SelfTest::TestCommands, SelfTest::TestPlugin})
        part(test);
    Assertion::AreEqual(test, tokenCount, GetDebugObjectCountExpressionEvaluator_EEToken(), L"Tokens left behind");
    Assertion::AreEqual(test, mapCount, GetDebugObjectCountExpressionEvaluator_CTokenMap(), L"Maps left behind");
}
