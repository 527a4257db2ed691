// A plug-in as others write them: a command, functions with their texts, and an automatic test that fails.

#include "Commands/CommandBase.h"
#include "Commands/TestCommand.h"
#include "DllRegistryUtils.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorException.h"
#include "ExpressionEvaluatorFunctions.h"
#include "Text/HostError.h"

__asm__(
    ".pushsection .ov.FUNCTIONS.TXT,\"\"\n"
    ".ascii \"Second.Cube(x) - The third power of x.\\nSecond.Twice(text) - Twice the value of an expression.\\n\"\n"
    ".popsection");

namespace {
class Second : public CommandBase
{
public:
    WString GetName() override { return L"Second"; }
    unsigned int GetCommandId() override { return 5000; }
    const char* GetSourceCodeTimestamp() override { return ""; }
    ExitCode Main(ArgumentList& arguments, Options&) override
    {
        GetPipe().DoWriteLine(arguments.Count() == 0 ? L"second" : arguments.At(0));
        SetFailureMessage(L"Failed on purpose");
        return ExitCode(arguments.Count());
    }
    void ShowUsage() override {}
};

CommandBase* CreateSecond()
{
    return new Second();
}

void RunTests(TestCommand& test)
{
    WStringArray output;
    Assertion::AreEqual(test, L"5000:0:1", test.Run(L"Second x", output).ToString(), L"exit code");
    Assertion::AreEqual(test, L"<&>", L"\"\x01\"", L"second");
    Assertion::AreEqual(test, 0.5, 0.25, L"%s");
    Assertion::AreEqual(test, L"9015:0:13", test.Run(L"Assert 1=2", output).ToString(), L"another's command");
    Assertion::IsTrue(test, output.IsEmpty(), L"output");
    throw HostException(HostError::FileError, L"on\npurpose\uFFFF");
}
/// Evaluates its text as an expression of the evaluator that calls.
class Twice : public EEFunction
{
public:
    Twice() : EEFunction(L"Second.Twice", 1) {}
    using EEFunction::Evaluate;
    void Evaluate(EEToken& result, EETokenStack& arguments, ExpressionEvaluator* evaluator) override
    {
        double value = 0;
        if (!evaluator->TryEvaluateDouble(arguments.Pop().GetWString(true), value))
            throw ExpressionEvaluatorException(9000, L"Second.Twice takes a number", result.GetPosition());
        result.SetValue(2 * value);
    }
};

const AddToCommandVector addSecond(CreateSecond);
const AddToAutomaticTestVector addTests(L"Second", L"Second plug-in", 1, RunTests);
const bool addTwice = fnTable_gb.AddFn(new Twice);
const bool addCube =
    fnTable_gb.AddFn(new EEMathFunctionPointer(L"Second.Cube", [](double value) { return value * value * value; }));
} // namespace
