// Evaluates what stands behind the first byte of the input, and once more in the way that the byte chooses, which must
// come to the same.

#include "Bench.h"
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

/// The form that gives a value of a type of its own gives what a cast of the value does.
template <typename Value, typename Form>
void CheckTypedForm(const Result& result, const Form& evaluate)
{
    Value value{};
    Value cast{};
    System::random.Seed(1);
    const bool isOne = result.value && result.value->TryCast(cast);
    Require(evaluate(value) == isOne, "a value of the type comes of what can be cast to it");
    Require(!isOne || value == cast, "it is the value that was cast");
}

void CheckTypedForms(ExpressionEvaluator& evaluator, const WString& expression, const Result& result)
{
    CheckTypedForm<double>(result, [&](double& value) { return evaluator.TryEvaluateDouble(expression, value); });
    CheckTypedForm<bool>(result, [&](bool& value) { return evaluator.TryEvaluateBool(expression, value); });
    WString text;
    System::random.Seed(1);
    Require(evaluator.TryEvaluateString(expression, text) == result.value.has_value(), "each value has a text");
    Require(!result.value || text == result.value->ToString(), "it is that of the value");
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

/// An evaluator with variables of both kinds.
class VariedEvaluator : public ExpressionEvaluator
{
public:
    explicit VariedEvaluator(unsigned int flags = 0) : ExpressionEvaluator(true, GetEnvironment(), nullptr, L"", flags)
    {
        Clear(); // its names consist of the usual characters
        SetVariable(L"x", 2.5);
        SetVariable(L"list", L"a;b;;c");
        SetVariable(L"yes", true);
    }

private:
    static Environment GetEnvironment()
    {
        Environment variables;
        variables.SetString(L"Count", L"7.50");
        variables.SetString(L"Truth", L"TRUE");
        variables.SetString(L"Name", L"7 apples");
        return variables;
    }
};

void EvaluateAgain(char way, const WString& expression, const Result& result)
{
    static VariedEvaluator reused;
    switch (way) {
    case '1': {
        VariedEvaluator traced(EvaluatorFlags::traceVariables);
        RequireSame(result, Run(traced, expression, EvaluateWhole));
        break;
    }
    case '2': RequireSame(result, Run(reused, expression, EvaluateLogged)); break;
    case '3': {
        VariedEvaluator stepped;
        RequireSame(result, Run(stepped, expression, EvaluateInSteps));
        ReadTokens(stepped, expression);
        break;
    }
    case '4': CheckTypedForms(reused, expression, result); break;
    default: RequireSame(result, Run(reused, expression, EvaluateWhole)); break;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static Bench bench(SOURCE_DIR "/Tests/Functions/Profile");
    if (size == 0)
        return 0;
    bench.Rewind();
    const WString expression = WString::FromUtf8({reinterpret_cast<const char*>(bytes) + 1, size - 1});
    VariedEvaluator evaluator;
    const Result result = Run(evaluator, expression, EvaluateWhole);
    if (result.value)
        CheckValue(*result.value);
    else
        CheckError(result, expression);
    EvaluateAgain(static_cast<char>(*bytes), expression, result);
    return 0;
}
