// Evaluates the expressions of its command line, with the variable `grams` and the function `Moles` of its own:
//     ./evaluate 'Moles(grams, 58.44)' 'Round(grams / 3, 2) & " g"'
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorFunctions.h"

#include <iostream>

class Moles : public EEFunction
{
public:
    Moles() : EEFunction(L"Moles", 2) {} // two arguments
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments) override
    {
        const double grams = arguments.Pop().GetNumber(); // the first one
        result.SetValue(grams / arguments.Pop().GetNumber());
    }
};

static const bool isAdded_lc = fnTable_gb.AddFn(new Moles);

int main(int count, char** texts)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    evaluator.SetVariable(L"grams", 5.844);
    for (int i = 1; i < count; ++i) {
        WString value, message, caret;
        ExitCode code;
        if (evaluator.TryEvaluateString(WString::FromUtf8(texts[i]), value))
            std::cout << value.ToUtf8() << '\n';
        else if (evaluator.TryGetErrorMessage(code, message, caret))
            std::cout << message.ToUtf8() << '\n' << texts[i] << '\n' << caret.ToUtf8() << '\n';
    }
    return isAdded_lc ? 0 : 1;
}
