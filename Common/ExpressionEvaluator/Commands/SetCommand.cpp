#include "SetCommand.h"

#include "Commands/TableFormatter.h"
#include "ExpressionEvaluator.h"
#include "Hints.h"
#include "NameCharacters.h"

#include <algorithm>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Set [<VariableName>[=<expression>]] [<options>]",
    L" Sets or gets an environment variable value.",
    L" No arguments are specified, all environment variables are listed.",
    L"Arguments:",
    L"  <VariableName>    The environment variable name.",
    L"  <expression>      Expression whose result is assigned to the",
    L"                     specified environment variable.",
    L"Options:",
    L" -i                 Initialize environment variable when it does",
    L"                     not exist using the expression. Ignored if",
    L"                     variable already is defined.",
    L" -v                 Use verbose output",
    L" -z                 Zap/Delete environment variable if it exists.",
};

constexpr FlagOption verbose_lc(L"v", 6, L"Show the value and the errors");
constexpr FlagOption initialize_lc(L"i", 7, L"Leave a variable that exists as it is");
constexpr FlagOption zap_lc(L"z", 8, L"Delete the variable");
constexpr OptionRecord options_lc[] = {verbose_lc, initialize_lc, zap_lc};

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Variable}, {ArgumentKind::Expression, L"=", true, true}};

constexpr CommandRecord record_lc = {
    L"Set", 1045, CreateCommandSetCommand, usage_lc, options_lc, CommandFlags::restAsItStands, arguments_lc, {0, 1}};

enum ExitNumber : unsigned int
{
    blankInName = 3,
    badCharacterInName = 4,
    noSuchVariable = 5,
    deletedAndAssigned = 9
};

bool IsWildcard(wchar_t ch)
{
    return ch == L'*' || ch == L'?';
}

bool IsBlank(wchar_t ch)
{
    return ch == L' ' || ch == L'\t';
}
} // namespace

CommandBase* CreateCommandSetCommand()
{
    return new SetCommand;
}

SetCommand::SetCommand() : Command(record_lc) {}

ExitCode SetCommand::Main(ArgumentList& arguments, Options& options)
{
    if (arguments.Count() >= 2)
        return ExitCode(CommonExit::wrongCount);
    const bool verbose = options.TryGetFlag(verbose_lc);
    const bool initialize = options.TryGetFlag(initialize_lc);
    const bool zap = options.TryGetFlag(zap_lc);

    WString name, expression;
    ExitCode refusal;
    if (arguments.Count() == 1)
        refusal = SplitArgument(arguments.At(0), name, expression);
    if (!refusal.IsError())
        refusal = Start(options);
    if (refusal.IsError())
        return refusal;

    if (arguments.Count() == 0)
        return List(L"*");
    if (!expression.IsEmpty()) {
        if (zap)
            return Refuse(deletedAndAssigned, L"A variable cannot be deleted and assigned at once");
        if (!initialize || !GetEnvironment().ContainsKey(name))
            return Assign(name, expression, verbose);
        if (verbose)
            GetPipe().WriteLine(L"Variable \"%s\" exists, skip initialization", name);
        return ExitCode(0);
    }
    if (std::ranges::any_of(name, IsWildcard))
        return zap ? WildcardDelete(name) : List(name);
    if (zap)
        return Delete(name);
    if (!GetEnvironment().ContainsKey(name))
        SetFailureMessage(L"No such variable: " + name + Hints::AskForName(name, GetEnvironment()));
    return Show(name, GetEnvironment().GetString(name, noSuchVariable));
}

void SetCommand::OnExit(ExitCode&) {} // its argument begins with a name

/// `name`, or `name=expression`; without an expression the name may hold wildcards.
ExitCode SetCommand::SplitArgument(const WString& argument, WString& name, WString& expression)
{
    const int equalSign = argument.IndexOf(L"=");
    const bool isPattern = equalSign < 0;
    if (isPattern) {
        name = argument.Trim();
    } else {
        name = argument.Left(static_cast<unsigned int>(equalSign)).Trim();
        expression = argument.Substring(static_cast<unsigned int>(equalSign) + 1).Trim();
    }

    const auto isValid = [&](wchar_t ch) {
        return NameCharacters::Default()->Contains(ch) || (isPattern && IsWildcard(ch));
    };
    if (std::ranges::any_of(name, IsBlank))
        return Refuse(blankInName, L"Blank in variable name: " + name);
    if (!std::ranges::all_of(name, isValid))
        return Refuse(badCharacterInName, L"Invalid character in variable name: " + name);
    return ExitCode(0);
}

ExitCode SetCommand::Assign(const WString& name, const WString& expression, bool verbose)
{
    EEToken result;
    ExpressionEvaluator evaluator(this, 0);
    if (!evaluator.TryEvaluate(expression, result)) {
        const EvaluationError error = TakeError(evaluator, expression);
        if (verbose)
            WriteReport(GetPipe(), error);
        return error.code;
    }
    const WString value = result.ToString();
    GetEnvironment().SetString(name, value);
    return verbose ? Show(name, value) : ExitCode(0);
}

ExitCode SetCommand::Delete(const WString& name)
{
    const bool deleted = GetEnvironment().TryDelete(name);
    GetPipe().WriteLine(deleted ? L"%s deleted" : L"%s not found", name);
    return ExitCode(0);
}

ExitCode SetCommand::Show(const WString& name, const WString& value)
{
    GetPipe().WriteLine(L"%s=%s", name, value);
    return ExitCode(0);
}

/// All names, sorted; false, and a line that says so, when there are none.
bool SetCommand::TryGetNames(WStringArray& names)
{
    GetEnvironment().GetKeys(names);
    if (names.IsEmpty()) {
        GetPipe().WriteLine(L"No environment variables defined");
        return false;
    }
    names.Sort();
    return true;
}

ExitCode SetCommand::List(const WString& pattern)
{
    WStringArray names;
    if (!TryGetNames(names))
        return ExitCode(0);

    TableFormatter table;
    table.AddRow(L"Name\tValue");
    for (const WString& name : names) {
        WString value;
        if (name.IsWildcardMatch(pattern.ToCString(), true) && GetEnvironment().TryGetString(name, value))
            table.AddRow(name + L"\t" + value);
    }
    if (table.GetRowCount() > 1)
        table.WriteTable(GetPipe());
    else
        GetPipe().WriteLine(L"No matching environment variables found");
    return ExitCode(0);
}

ExitCode SetCommand::WildcardDelete(const WString& pattern)
{
    WStringArray names;
    if (!TryGetNames(names))
        return ExitCode(0);

    int count = 0;
    for (const WString& name : names) {
        if (!name.IsWildcardMatch(pattern.ToCString(), true))
            continue;
        GetEnvironment().TryDelete(name);
        GetPipe().DoWriteLine(name);
        ++count;
    }
    GetPipe().WriteLine(L"Deleted %d variable(s)", count);
    return ExitCode(0);
}

void SetCommand::ShowUsage()
{
    WriteUsage(L"Supported operators in the expression:", L"Supported functions in the expression:");
}
