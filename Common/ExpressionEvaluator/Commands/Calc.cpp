#include "Calc.h"

#include "Commands/CommandRegistry.h"
#include "Commands/EmbeddedResource.h"
#include "Commands/PluginLoader.h"
#include "ExpressionEvaluator.h"

namespace {
constexpr wchar_t errorMessageName[] = L"ErrMsg";
constexpr wchar_t errorPositionName[] = L"ErrPos";

constexpr UsageLine usage_lc[] = {
    L"Usage: Calc [<options>] <expression>",
    L" Calculates the specified expression. Expresions can yield ",
    L" a numeric, boolean or string result. It may even contain",
    L" functions. See list of supported functions below.",
    L" NOTE: Any options must preceede the expression",
    L" Example: 2+3*4",
    L"          Int(GetConfig(\"Detection\",\"MaxLight\",0.9)*100)",
    L"          \"Current Date Is: \" & %%S{InfoDate}",
    L"          Rand(1, 100)",
    L"Arguments:",
    L" <expression>   The expression to evaluate.",
    L"Options:",
    L" -h[elp] Shows a description of all supported expression evaulator",
    L"          functions. Must be used without command arguments.",
    L" -q     Quiet mode, do not display anything, just return the value",
    L"         in the command return string.",
    {L" -v     Verification mode, update the environment variables %s &", errorMessageName},
    {L"         %s with the error message and offending character position", errorPositionName},
    {L"         in the expression on failure. If successful %s=\"\" and", errorMessageName},
    {L"         %s=-1. Used for automatic testing.", errorPositionName},
    L"",
};

constexpr FlagOption quiet_lc(L"q", 3, L"Show nothing, only return the value");
constexpr FlagOption help_lc(L"help", 4, L"Describe the functions and operators");
constexpr FlagOption shortHelp_lc(L"h", 4, L"Describe the functions and operators");
constexpr FlagOption verify_lc(L"v", 5, L"Leave an error in the variables ErrMsg and ErrPos");
constexpr OptionRecord options_lc[] = {quiet_lc, help_lc, shortHelp_lc, verify_lc};

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Expression}};

constexpr const wchar_t* variables_lc[] = {errorMessageName, errorPositionName};

constexpr CommandRecord record_lc = {L"Calc", 1043, CreateCommandCalc, usage_lc, options_lc,
    CommandFlags::restAsItStands, arguments_lc, {1, 1}, variables_lc};

void WriteLines(Pipe& pipe, EmbeddedResource text, const wchar_t* indent)
{
    while (!text.EndOfFile())
        pipe.DoWriteLine(indent + text.ReadLine());
}

/// The entries of this plug-in, then those of the others that bring some.
void WriteFunctions(Pipe& pipe)
{
    WriteLines(pipe, EmbeddedResource(L"Calc", L"FUNCTIONS.TXT"), L" ");
    const std::string& ownFile = CommandRegistry::FindOrNull(L"Calc")->file;
    for (const std::string& file : PluginLoader::GetFiles()) {
        if (file != ownFile)
            WriteLines(pipe, EmbeddedResource(file, L"FUNCTIONS.TXT"), L" ");
    }
}
} // namespace

CommandBase* CreateCommandCalc()
{
    return new Calc;
}

Calc::Calc() : Command(record_lc) {}

ExitCode Calc::Main(ArgumentList& arguments, Options& options)
{
    const bool quiet = options.TryGetFlag(quiet_lc);
    const bool help = options.TryGetFlag(help_lc) || options.TryGetFlag(shortHelp_lc);
    const bool verify = options.TryGetFlag(verify_lc);

    if (help != (arguments.Count() == 0))
        return ExitCode(CommonExit::wrongCount);
    if (const ExitCode refusal = Start(options); refusal.IsError())
        return refusal;
    return help ? ShowHelpTexts() : Evaluate(arguments.At(0), quiet, verify);
}

ExitCode Calc::ShowHelpTexts()
{
    WriteLines(GetPipe(), EmbeddedResource(L"Calc", L"HELP.TXT"), L"");
    GetPipe().WriteLine(L"");
    GetPipe().WriteLine(L"Expression evaluator functions:");
    WriteFunctions(GetPipe());
    GetPipe().WriteLine(L"Expression evaulator operators:");

    WStringArray operators;
    ExpressionEvaluator::GetSupportedOperators(operators);
    WString line;
    for (const WString& name : operators)
        line.AppendWithSeparator(name, L", ");
    GetPipe().DoWriteLine(L" " + line);
    return ExitCode(0);
}

ExitCode Calc::Evaluate(const WString& expression, bool quiet, bool verify)
{
    if (verify) {
        GetEnvironment().SetString(errorMessageName, L"");
        GetEnvironment().SetInt(errorPositionName, -1);
    }
    EEToken result;
    ExpressionEvaluator evaluator(this, 0);
    if (!evaluator.TryEvaluate(expression, result))
        return FailEvaluation(TakeError(evaluator, expression), quiet, verify);

    GetReturnString() = result.ToString();
    if (!quiet)
        GetPipe().DoWriteLine(GetReturnString());
    return ExitCode(0);
}

ExitCode Calc::FailEvaluation(EvaluationError error, bool quiet, bool verify)
{
    if (error.code.GetCommandId() == 0)
        error.code.SetCommandId(static_cast<unsigned short>(GetCommandId()));
    const int position = static_cast<int>(error.marker.Length());
    if (verify) {
        GetEnvironment().SetString(errorMessageName, error.message);
        GetEnvironment().SetInt(errorPositionName, position);
    }
    if (!quiet) {
        GetPipe().WriteLine(L"Error:");
        WriteReport(GetPipe(), error, L"  ", L"  ");
    }
    if (!quiet && verify) {
        GetPipe().WriteLine(L"Test code:");
        GetPipe().WriteLine(L"AssertFail %s Calc -v %s", error.code.ToCString(), error.expression);
        GetPipe().WriteLine(L"Assert ErrMsg=\"%s\" AND ErrPos=%d", error.message, position);
        GetPipe().WriteLine(L"");
    }
    return error.code;
}

void Calc::ShowUsage()
{
    WriteUsage(L"Supported operators:", L"Supported functions:");
}
