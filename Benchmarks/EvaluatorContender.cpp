#include "Contender.h"
#include "ExpressionEvaluator.h"
#include "Variation.h"

namespace {
class EvaluatorContender : public Contender
{
public:
    explicit EvaluatorContender(const Texts& texts)
    {
        for (const std::string& text : texts)
            expressions.push_back(WString::FromUtf8(text));
        for (const auto& [name, value] : MakeVariables())
            evaluator.SetVariable(WString::FromUtf8(name), value);
    }

    void Evaluate(std::size_t text) override { succeeded = evaluator.TryEvaluate(expressions[text], result); }

    Value GetValue() override
    {
        double number = 0;
        if (succeeded && result.GetDataType() != DT_STR && result.TryCast(number))
            return number;
        return succeeded ? result.ToString().ToUtf8() : GetErrorMessage();
    }

private:
    ExpressionEvaluator evaluator{nullptr, 0};
    std::vector<WString> expressions;
    EEToken result;
    bool succeeded = false;

    std::string GetErrorMessage() const
    {
        ExitCode code;
        WString message;
        evaluator.TryGetErrorMessage(code, message, nullptr);
        return message.ToUtf8();
    }
};
} // namespace

std::unique_ptr<Contender> MakeEvaluator(const Texts& expressions)
{
    return std::make_unique<EvaluatorContender>(expressions);
}
