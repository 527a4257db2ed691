#pragma once

#include "EEToken.h"
#include "EETokenMap.h"
#include "EETokenStack.h"
#include "EvaluatorLog.h"
#include "ExpressionEvaluatorApi.h"
#include "Instrument/Environment.h"
#include "Text/ExitCode.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <memory>
#include <optional>
#include <vector>

class CommandBase;
class Converter;
class EEFunction;
class Evaluation;
struct EvaluatorError;
class ExpressionEvaluatorException;
struct Item;
class NameCharacters;
class Pipe;
class Tokenizer;
struct Workspace;

/// Options of an evaluator, given at construction.
namespace EvaluatorFlags {
constexpr unsigned int noConstantE = 1;    // the name "e" is not a built-in constant
constexpr unsigned int traceVariables = 2; // every variable read and every function result goes to the variable trace
constexpr unsigned int readNothing = 4; // status values, settings, counters, time and random numbers are not read: what
                                        // refers to one becomes a missing variable
} // namespace EvaluatorFlags

/// Evaluates expressions: text in; a number, boolean or text out, or an error with exit code, message and position. The
/// position of an error is a place in the expression: counted from 0 and behind what was read for an error of grammar,
/// counted from 1 for one of a value, so that a caret under that column (1 for 0) shows it. An evaluator is re-usable,
/// and serves one thread at a time.
class EE_API ExpressionEvaluator
{
public:
    /// An evaluator for a command, whose environment it reads; with a null command it reads none.
    ExpressionEvaluator(CommandBase* command, unsigned int flags);
    /// The map is not owned and may be null; it must outlive its use here.
    ExpressionEvaluator(bool useEnvironment, const Environment& environment, EETokenMap* map, const WString& validChars,
        unsigned int flags);
    virtual ~ExpressionEvaluator();
    ExpressionEvaluator(const ExpressionEvaluator&) = delete;
    ExpressionEvaluator& operator=(const ExpressionEvaluator&) = delete;

    /// Empties an owned variable map or lets go of a lent one, and restores the default name characters; empties the
    /// trace.
    void Clear();
    /// The characters that names may consist of, in both cases; operators, parentheses and blanks among them are
    /// skipped.
    void SetValidChars(const wchar_t* chars);
    void AddFlags(unsigned int moreFlags) noexcept { flags |= moreFlags; }

    // Variables; the first one makes a map when there is none.

    void SetVariable(const WString& name, EEToken& value);
    void SetVariable(const WString& name, double value);
    void SetVariable(const WString& name, bool value);
    void SetVariable(const WString& name, const WString& value);
    void SetVariable(const WString& name, const wchar_t* value) { SetVariable(name, WString(value)); }
    template <NoValuePointer T>
    void SetVariable(const WString& name, T value) = delete;
    void AddVariables(EETokenMap& map);
    /// Uses the given map without owning it; null for none.
    void SetVariableMap(EETokenMap* map);

    // Evaluation. The Try forms never throw: they return false with the error recorded. The plain forms throw its exit
    // code. What ends every command (an abort and its like, see CommandRunner::EndsCallers) ends the evaluation too: it
    // is the error on record, with its own code and message, whatever other errors there were and whichever function
    // might have tested them. So does the lack of memory, with the host's code for it.

    bool TryEvaluate(const WString& expression, EEToken& result);
    bool TryEvaluateDouble(const WString& expression, double& result);
    bool TryEvaluateInt(const WString& expression, int& result); // truncated toward zero, saturating
    bool TryEvaluateBool(const WString& expression, bool& result);
    bool TryEvaluateString(const WString& expression, WString& result);
    EEToken Evaluate(const WString& expression);
    double EvaluateDouble(const WString& expression);
    int EvaluateInt(const WString& expression);
    bool EvaluateBool(const WString& expression);
    WString EvaluateString(const WString& expression);

    /// The error of the last evaluation, which must have failed: after a success an error may be on record that the
    /// value does not depend on, such as an unknown function in the argument that IF did not choose. False when there
    /// is none.
    bool TryGetErrorMessage(ExitCode& code, WString& message, int* position) const;
    /// The same with a line that points at the place under the expression: blanks and "^".
    bool TryGetErrorMessage(ExitCode& code, WString& message, WString& marker) const;
    /// Why the host, or a function of another plug-in, failed, when that is the recorded error: what its code cannot
    /// tell, such as the name of a file.
    bool TryGetErrorReason(WString& reason) const;
    /// The name of the last variable that could not be resolved; true when there is one.
    bool TryGetMissingVariableName(WString& name) const;
    /// With the flag traceVariables, one line "label:name=value" for each variable read and function called; a variable
    /// of the map and a built-in name are without "label:". It ends before the line that would make it longer than a
    /// text can be.
    const WString& GetVariableTrace() const noexcept { return trace.lines; }
    void ClearVariableTrace() noexcept;

    // The error record. Only the first error of an evaluation is kept.

    void ErrMsg(const ExitCode& code, int position, const wchar_t* message);
    /// Places the error at `at`, a place in the expression.
    void ErrMsg(unsigned int number, const wchar_t* at, const wchar_t* message);
    void ErrMsg(const ExpressionEvaluatorException& exception);
    /// Records the error at `at` and returns false.
    bool Fail(const EvaluatorError& error, const wchar_t* at);

    // The steps of an evaluation. They return false with the error recorded, unless said otherwise; what ends the
    // evaluation as a whole, and the host's exceptions while tokens are read, they throw.

    /// Reads one token at the cursor and moves behind it.
    bool GetToken(EEToken& token, wchar_t** cursor);
    bool Infix2Postfix(WString expression, EETokenStack& postfix);
    /// Converts up to the end, a "," or an unmatched ")", which `terminator` receives as a token type.
    bool InfixSubExpr2Postfix(const wchar_t* start, wchar_t*& cursor, int* terminator, EETokenStack& postfix);
    /// Converts the arguments of a call whose name and "(" have been read.
    bool InfixFunctionToPostfix(
        const wchar_t* start, EEToken& function, wchar_t*& cursor, int* terminator, EETokenStack& postfix);
    bool EvaluatePostfixExpr(EEToken& result, EETokenStack& postfix);
    /// Evaluates one level; `terminator` receives what ended it: TT_END, TT_PRMSEP or TT_FUNCOP. An error of a value is
    /// left in `result`, for an enclosing call to test; only what fails without one is recorded.
    bool EvaluatePostfixSubExpr(EEToken& result, EETokenStack& postfix, int* terminator);
    /// Discards the rest of the current argument. Always true.
    bool OnErrorCleanupPostfixStack(EETokenStack& postfix, int* terminator);

    // References to the instrument. A missing source is no error here: the token becomes a missing variable.

    bool TryGetSystemVariable(EEToken& token, wchar_t** cursor);
    bool TryGetSystemVariableName(wchar_t** cursor, WString& name);
    bool TryGetStatusValue(EEToken& token, const WString& name, const wchar_t* at);
    bool TryGetStatusValueNoLog(EEToken& token, const WString& name, const wchar_t* at);
    bool TryGetConfigValue(EEToken& token, const WString& name, const wchar_t* at);
    bool TryGetConfigValueNoLog(EEToken& token, const WString& name, const wchar_t* at);
    bool TryGetUsageLogValue(EEToken& token, const WString& name, const wchar_t* at);
    bool TryGetUsageLogValueNoLog(EEToken& token, const WString& name, const wchar_t* at);
    /// `reference` tells %E{name} from a bare name.
    bool TryGetEnvironmentVariableValue(EEToken& token, const WString& name, bool reference, const wchar_t* at);
    bool TryGetEnvironmentVariableValueNoLog(EEToken& token, const WString& name, bool reference, const wchar_t* at);
    /// The plain look-up: false, and the token as it was, when there is no such variable.
    bool TryGetEnvironmentVariableValue(EEToken& token, const WString& name);
    void LogVariable(const wchar_t* prefix, const WString& name, const EEToken& value);

    // Help.

    static void GetSupportedOperators(WStringArray& out);
    static void GetSupportedFunctions(WStringArray& out); // sorted
    /// The names that need no variable, such as PI.
    static WStringArray GetBuiltInNames();
    /// Writes the block that ends every usage text. `environment` adds the forms that read environment variables. The
    /// titles are formats of Pipe::WriteLine without arguments, so "%%" prints as "%"; one with a faulty directive is
    /// written as it stands.
    static void DisplaySupportedOperatorsAndFunctionsHelpText(
        Pipe& pipe, bool environment, const WString& operatorsTitle, const WString& functionsTitle);

private:
    static constexpr int maxCallDepth = 200; // function calls may stand inside each other's arguments this deep

    struct Reason
    {
        int position;
        ExitCode code;
        WString text;
    };

    /// What is known of one evaluation besides its value.
    struct Record
    {
        WString message;
        ExitCode code;
        int position = 0;
        const wchar_t* expressionStart = nullptr;
        WString missingVariable;
        std::vector<Reason> reasons; // of every host failure, for only the end shows which one is the error

        void Clear() noexcept;
    };

    struct Trace
    {
        WString lines;
        bool isFull = false;
    };

    struct WorkspaceReturn
    {
        void operator()(Workspace* workspace) const noexcept;
    };

    class RunningCall;
    class WorkspaceUse;
    friend class Tokenizer;
    friend class Converter;
    friend class Evaluation;

    Record record;
    std::optional<Record>* keptRecord =
        nullptr; // while a function runs: for the record of the evaluation that calls it
    std::shared_ptr<const NameCharacters> validChars;
    EETokenMap* map = nullptr; // lent, or ownMap
    std::unique_ptr<EETokenMap> ownMap;
    Environment environment;
    bool hasEnvironment = false;
    Trace trace;
    unsigned int flags = 0;
    int callDepth = 0;                                     // how many calls enclose what is being evaluated
    std::unique_ptr<Workspace, WorkspaceReturn> workspace; // from the first evaluation on

    EETokenMap& GetOrMakeMap();
    bool ReadsInstrument() const noexcept { return (flags & EvaluatorFlags::readNothing) == 0; }
    bool IsLogging() const noexcept { return eeLog_gb.IsEnabled() || (flags & EvaluatorFlags::traceVariables) != 0; }

    template <typename Step>
    [[gnu::visibility("hidden")]] bool Guard(const Step& step);
    bool RecordThrown() noexcept;
    void StartRecord();
    bool ConvertAndEvaluate(const WString& expression, EEToken& result);
    template <typename Value>
    bool TryEvaluateAs(const WString& expression, Value& result, const EvaluatorError& error);

    void LogIfEnabled(const wchar_t* prefix, const WString& name, const EEToken& token);

    bool Convert(const wchar_t* expression);
    bool FailBehind(int terminator, const wchar_t* at);
    bool RecordValue(const EEToken& error);
    void TakeThrown(EEToken& result);
    void TakeHostError(EEToken& result, const ExitCode& code, const WString& reason);
    Item GetRecordedError() const;
    void RunFunction(EEFunction& function, EEToken& value, EETokenStack& arguments);
    void ThrowIfEnded() const;
};

/// The next value of the host's generator, from 0 up to 1.
EE_API double GetRandomNumber();
