#include "Contender.h"

#include "ExpressionEvaluator.h"

namespace {
class EvaluatorContender : public Contender
{
public:
    explicit EvaluatorContender(const std::string& expression)
        : evaluator(nullptr, 0), expression(WString::FromUtf8(expression))
    {
        evaluator.SetVariable(L"a", variableA);
        evaluator.SetVariable(L"b", variableB);
        evaluator.SetVariable(L"c", variableC);
        evaluator.SetVariable(L"d", variableD);
    }

    void Evaluate() override { evaluator.TryEvaluate(expression, result); }

    Value GetValue() override
    {
        double number = 0;
        if (result.GetDataType() != DT_STR && result.TryCast(number))
            return number;
        return result.ToString().ToUtf8();
    }

private:
    ExpressionEvaluator evaluator;
    WString expression;
    EEToken result;
};
} // namespace

std::unique_ptr<Contender> MakeEvaluator(const std::string& expression)
{
    return std::make_unique<EvaluatorContender>(expression);
}
