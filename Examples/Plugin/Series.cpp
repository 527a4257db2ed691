#include "Commands/RecordedCommand.h"
#include "DllRegistryUtils.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorException.h"
#include "ExpressionEvaluatorFunctions.h"

#include <cmath>

namespace {
/// The sum of an expression for i = 1 to n.
class Series : public EEFunction
{
public:
    Series() : EEFunction(L"Series", 2) {}
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator* evaluator) override;
};

void Series::Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator* evaluator)
{
    const WString term = arguments.Pop().GetWString(false); // the first argument; no text: throws that it is none
    const double count = arguments.Pop().GetNumber();
    if (!evaluator || !(count >= 1 && count <= 1000))
        throw ExpressionEvaluatorException(10001, L"Series takes 1 to 1000 terms", result.GetPosition());
    double sum = 0;
    for (int i = 1; i <= count; ++i) {
        double value = 0;
        evaluator->SetVariable(L"i", static_cast<double>(i));
        if (!evaluator->TryEvaluateDouble(term, value)) {
            ExitCode code;
            WString message;
            evaluator->TryGetErrorMessage(code, message, nullptr);
            result.SetException(10002, L"Series: " + message);
            return;
        }
        sum += value;
    }
    result.SetValue(sum);
}

CommandBase* CreateTable();

constexpr UsageLine usage[] = {
    L"Usage: Table <n> <expression>",
    L" Writes the values of the expression for i = 1 to n.",
};
constexpr CommandRecord tableRecord = {L"Table", 5100, CreateTable, usage};

class Table : public RecordedCommand
{
public:
    Table() : RecordedCommand(tableRecord) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Table::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options, 2, 2); // two arguments and no option, or the refusal is thrown
    ExpressionEvaluator evaluator(this, 0);
    const int count = evaluator.EvaluateInt(arguments.At(0)); // a failure is thrown as the command's exit code
    for (int i = 1; i <= count; ++i) {
        WaitForTimeControlPointIfRequested(); // Ctrl-C ends the loop
        evaluator.SetVariable(L"i", static_cast<double>(i));
        GetPipe().DoWriteLine(evaluator.EvaluateString(arguments.At(1)));
    }
    return ExitCode(0);
}

CommandBase* CreateTable()
{
    return new Table;
}

const AddToCommandVector addTable(CreateTable);
const bool addCbrt = fnTable_gb.AddFn(new EEMathFunctionPointer(L"Cbrt", std::cbrt));
const bool addSeries = fnTable_gb.AddFn(new Series);
} // namespace
