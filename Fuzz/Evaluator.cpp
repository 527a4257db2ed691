// Evaluates what stands behind the first byte of the input, and once more in the way that the byte chooses, which must
// come to the same.

#include "Bench.h"
#include "EETokenMap.h"
#include "ExpressionEvaluator.h"
#include "Instrument/System.h"
#include "Require.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace {

/// What an evaluation came to.
struct Result
{
    std::optional<EEToken> value;
    ExitCode code;
    WString message;
    int position = 0;
    WString missingVariable;
    WString reason;
};

using Evaluate = bool (*)(ExpressionEvaluator& evaluator, const WString& expression, EEToken& value);

Result Run(ExpressionEvaluator& evaluator, const WString& expression, Evaluate evaluate)
{
    System::random.Seed(1);
    Result result;
    EEToken value;
    if (evaluate(evaluator, expression, value)) {
        result.value = value;
        return result;
    }
    evaluator.TryGetErrorMessage(result.code, result.message, &result.position);
    evaluator.TryGetMissingVariableName(result.missingVariable);
    evaluator.TryGetErrorReason(result.reason);
    return result;
}

void CheckValue(const EEToken& value)
{
    const int type = value.GetDataType();
    Require(value.GetType() == TT_OPERAND && value.IsValued(), "what comes out is a value");
    Require(type == DT_NUM || type == DT_BOOL || type == DT_STR || type == DT_NUMSTR, "it has a type");
}

void CheckError(const Result& result, const WString& expression)
{
    Require(result.code.IsError() && !result.message.IsEmpty(), "an error has a code and a message");
    const auto end = static_cast<int>(expression.Length()) + 1;
    Require(result.position >= 0 && result.position <= end, "an error stands within the expression");
}

void RequireSame(const Result& one, const Result& other)
{
    Require(one.value.has_value() == other.value.has_value(), "both ways succeed or fail");
    if (one.value) {
        Require(one.value->GetDataType() == other.value->GetDataType(), "both ways give values of one type");
        Require(one.value->ToString() == other.value->ToString(), "both ways give one value");
        return;
    }
    Require(one.code == other.code && one.message == other.message, "both ways give one error");
    Require(one.position == other.position, "both ways place the error alike");
    Require(one.missingVariable == other.missingVariable, "both ways name one missing variable");
    Require(one.reason == other.reason, "both ways give one reason");
}

bool EvaluateWhole(ExpressionEvaluator& evaluator, const WString& expression, EEToken& value)
{
    return evaluator.TryEvaluate(expression, value);
}

bool EvaluateLogged(ExpressionEvaluator& evaluator, const WString& expression, EEToken& value)
{
    eeLog_gb.SetEnabled(true);
    const bool succeeded = evaluator.TryEvaluate(expression, value);
    eeLog_gb.SetEnabled(false);
    return succeeded;
}

bool EvaluateInSteps(ExpressionEvaluator& evaluator, const WString& expression, EEToken& value)
{
    EETokenStack postfix;
    return evaluator.Infix2Postfix(expression, postfix) && evaluator.EvaluatePostfixExpr(value, postfix);
}

/// The forms that give a value of a type of their own are what a cast of the value is.
void CheckTypedForms(ExpressionEvaluator& evaluator, const WString& expression, const Result& result)
{
    const auto start = [] { System::random.Seed(1); };
    double number = 0;
    bool flag = false;
    WString text;
    start();
    Require(evaluator.TryEvaluateString(expression, text) == result.value.has_value(), "a text comes of each value");
    Require(!result.value || text == result.value->ToString(), "it is that of the value");
    double cast = 0;
    start();
    Require(evaluator.TryEvaluateDouble(expression, number) == (result.value && result.value->TryCast(cast)),
        "a number comes of what is one");
    Require(number == cast, "it is that of the value");
    bool castFlag = false;
    start();
    Require(evaluator.TryEvaluateBool(expression, flag) == (result.value && result.value->TryCast(castFlag)),
        "a boolean comes of what is one");
    Require(flag == castFlag, "it is that of the value");
}

/// Reads the tokens one by one, as far as they can be read without their context.
void ReadTokens(ExpressionEvaluator& evaluator, const WString& expression)
{
    WString text = expression;
    auto* const start = const_cast<wchar_t*>(text.ToCString());
    wchar_t* cursor = start;
    EEToken token;
    for (const wchar_t* former = nullptr; cursor != former && evaluator.GetToken(token, &cursor);) {
        former = cursor;
        Require(cursor >= start && cursor <= start + text.Length(), "the reader of tokens stays within the text");
        token.GetDumpString();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static Bench bench(SOURCE_DIR "/Tests/Functions/Profile");
    static const Environment environment = [] {
        Environment variables;
        variables.SetString(L"Count", L"7.50");
        variables.SetString(L"Truth", L"TRUE");
        variables.SetString(L"Name", L"7 apples");
        return variables;
    }();
    static EETokenMap map(7);
    static ExpressionEvaluator reused(true, environment, &map, L"", 0);
    if (size == 0)
        return 0;
    const WString expression = WString::FromUtf8({reinterpret_cast<const char*>(bytes) + 1, size - 1});
    map.Clear();
    map.SetVariable(L"x", 2.5);
    map.SetVariable(L"list", L"a;b;;c");
    map.SetVariable(L"yes", true);

    ExpressionEvaluator fresh(true, environment, &map, L"", 0);
    const Result result = Run(fresh, expression, EvaluateWhole);
    if (result.value)
        CheckValue(*result.value);
    else
        CheckError(result, expression);
    switch (static_cast<unsigned char>(*bytes - '0') % 5) {
    case 1: {
        ExpressionEvaluator traced(true, environment, &map, L"", EvaluatorFlags::traceVariables);
        RequireSame(result, Run(traced, expression, EvaluateWhole));
        break;
    }
    case 2: RequireSame(result, Run(fresh, expression, EvaluateLogged)); break;
    case 3: {
        ExpressionEvaluator stepped(true, environment, &map, L"", 0);
        RequireSame(result, Run(stepped, expression, EvaluateInSteps));
        ReadTokens(stepped, expression);
        break;
    }
    case 4: CheckTypedForms(reused, expression, result); break;
    default: RequireSame(result, Run(reused, expression, EvaluateWhole)); break;
    }
    return 0;
}
