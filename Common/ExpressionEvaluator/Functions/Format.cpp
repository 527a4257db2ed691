#include "FunctionArguments.h"
#include "FunctionClasses.h"
#include "NumberFormat.h"

namespace {
/// A count of digits or decimals as it was given, and where.
struct DigitsArgument
{
    double value;
    int position;

    int Within(int min, int max, const EvaluatorError& error) const
    {
        if (value < min || value > max)
            throw ExpressionEvaluatorException(error, position);
        return static_cast<int>(value);
    }
};

DigitsArgument PopDigits(EETokenStack& arguments)
{
    const EEToken& token = arguments.Pop();
    return {token.GetNumber(), token.GetPosition()};
}

constexpr int minDigits = 2;
constexpr int maxDigits = 15;

void FormatDigits(EEToken& result, EETokenStack& arguments, wchar_t* (*formatter)(double, short, wchar_t*),
    const EvaluatorError& wrongDigits)
{
    const double value = arguments.Pop().GetNumber();
    const int digits = PopDigits(arguments).Within(minDigits, maxDigits, wrongDigits);
    wchar_t text[numberTextSize];
    result.SetValue(formatter(value, static_cast<short>(digits), text));
}
} // namespace

void EEFtoa::Evaluate(EEToken& result, EETokenStack& arguments)
{
    FormatDigits(result, arguments, efFtoa, Errors::FtoaDigits);
}

void EEFcvt::Evaluate(EEToken& result, EETokenStack& arguments)
{
    FormatDigits(result, arguments, efFcvt, Errors::FcvtDigits);
}

void EEFmtEng::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const double value = arguments.Pop().GetNumber();
    const DigitsArgument digits = PopDigits(arguments);
    const bool removeEndingZeros = arguments.Pop().GetBool();
    wchar_t text[numberTextSize];
    result.SetValue(
        efFmtEng(value, digits.Within(minDigits, maxDigits, Errors::FmtEngDigits), text, removeEndingZeros));
}

void EERound::Evaluate(EEToken& result, EETokenStack& arguments)
{
    const double value = arguments.Pop().GetNumber();
    const int decimals = PopDigits(arguments).Within(0, maxDigits, Errors::RoundDecimals);
    const WString format = WString::Format(L"%%.%df", decimals);
    result.SetValue(WString::Format(format.ToCString(), efAdjustDblForDisplay(value, decimals)));
}
