#include "ExpressionCheck.h"

#include "AbstractEvaluation.h"
#include "EvaluatorErrors.h"
#include "ExpressionFindings.h"

#include <algorithm>

namespace {
using namespace ValueKinds;

/// The code of a finding about what the engine cannot read.
const wchar_t* GetCode(unsigned int number)
{
    using namespace Errors;
    switch (number) {
    case TooManyParametersAtSeparator.number:
    case TooManyParametersAtClose.number:
    case MissingParameter.number:
    case EmptyArgument.number: return Findings::WrongCount;
    case ReferenceTypeInvalid.number:
    case ReferenceStartExpected.number:
    case ReferenceEndExpected.number:
    case ConfigSectionUnclosed.number:
    case ConfigSectionMissing.number: return Findings::BadReference;
    default: return Findings::BadExpression;
    }
}

/// Whether there is a reference, no longer than names of items are, that this bench does not let expressions read.
bool HasUnreadable(std::wstring_view expression)
{
    constexpr std::size_t longest = 256;
    EEToken value;
    WString message;
    for (std::size_t at = expression.find(L'%'); at != std::wstring_view::npos; at = expression.find(L'%', at + 1)) {
        const std::wstring_view text = expression.substr(at, longest);
        const WString reference(text.substr(0, FindItemEnd(text, 0)));
        if (reference.StartsWith(L"%S{", true) && !OperandReader::IsReadable(reference, value, message))
            return true;
    }
    return false;
}

/// The error is sure unless a reference fails first.
void FailConversion(std::wstring_view expression, const ExpressionEvaluator& evaluator, FoundList& found)
{
    ExitCode code;
    WString message;
    int position = 0;
    evaluator.TryGetErrorMessage(code, message, &position);
    const bool isSure = !HasUnreadable(expression);
    found.Fail(isSure, GetCode(code.GetNumber()), position, message);
}

/// What is written where a condition is to be the same every time: "true", "false", and two small numbers compared,
/// "1=1".
bool IsConstantOnPurpose(const EETokenStack& postfix)
{
    constexpr int most = 3;
    if (postfix.Count() > most)
        return false;
    std::vector<EEToken> tokens;
    postfix.ForEach([&](const EEToken& token) { tokens.push_back(token); });
    const auto isOf = [&](std::size_t index, int dataType) {
        return tokens[index].GetType() == TT_OPERAND && tokens[index].GetDataType() == dataType;
    };
    if (tokens.size() == 1)
        return isOf(0, DT_BOOL);
    const auto isPlain = [&](std::size_t index) {
        double number = 0;
        return isOf(index, DT_NUM) && tokens[index].TryGetValue(&number, nullptr) && number <= 2;
    };
    return tokens.size() == most && isPlain(0) && isPlain(1) &&
        GetOperatorRule(tokens[2].GetText().View()).isComparison;
}

/// Whether a value serves as a condition, and is not the same every time.
void CheckCondition(const AbstractValue& value, bool isConstantOnPurpose, FoundList& found)
{
    bool truth = false;
    if (value.MayBe(Number) && !value.MayBe(Boolean | Text)) {
        found.WarnOfAll(
            Findings::NumberCondition, L"A number as a condition is true when it is 0, and false otherwise");
    } else if (value.isKnown && !value.IsError() && !value.token.TryCast(truth)) {
        found.Warn(Findings::FailingOperation, 0, Errors::NoBool.message);
    } else if (value.isKnown && !value.IsError() && !isConstantOnPurpose) {
        found.WarnOfAll(
            Findings::ConstantCondition, truth ? L"The condition is always true" : L"The condition is never true");
    }
}
} // namespace

void CheckExpression(std::wstring_view expression, ExpressionUse use, const IsVariableKnown& isKnown,
    std::vector<ExpressionFinding>& out, const OfferVariables& offer)
{
    FoundList found(expression, out);
    EngineSteps engine;
    ExpressionEvaluator& evaluator = engine.GetEvaluator();
    EETokenStack postfix;
    if (!evaluator.Infix2Postfix(WString(expression), postfix)) {
        FailConversion(expression, evaluator, found);
        return;
    }
    const bool isConstantOnPurpose = use == ExpressionUse::Assertion || IsConstantOnPurpose(postfix);
    OperandReader reader(expression, isKnown, offer, found);
    const AbstractValue value = AbstractEvaluation(engine, reader, found, postfix).Run();
    if (use != ExpressionUse::Value)
        CheckCondition(value, isConstantOnPurpose, found);
    found.Finish();
}
