#include "Commands/Pipe.h"
#include "ExpressionEvaluator.h"
#include "ExpressionEvaluatorFunctions.h"
#include "OperatorTable.h"

#include <exception>

/// A title is a format, as every line of the help is. The caller's text may be none; it is then written as it stands.
static void WriteTitle(Pipe& pipe, const WString& title)
{
    WString line;
    try {
        line = WString::Format(title.ToCString());
    } catch (const std::exception&) {
        line = title;
    }
    pipe.DoWriteLine(line);
}

static void Flush(Pipe& pipe, WString& line)
{
    if (line.IsEmpty())
        return;
    pipe.DoWriteLine(L" " + line);
    line.Clear();
}

/// Breaks a line once it has passed 70 characters.
static void WriteOperators(Pipe& pipe)
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedOperators(names);
    WString line;
    for (const WString& name : names) {
        line.AppendWithSeparator(name, L", ");
        if (line.Length() > 70)
            Flush(pipe, line);
    }
    Flush(pipe, line);
}

/// Breaks a line before a name would take it past 75 characters, where the separator does not count.
static void WriteFunctions(Pipe& pipe)
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    WString line;
    for (const WString& name : names) {
        if (line.Length() + name.Length() > 75)
            Flush(pipe, line);
        line.AppendWithSeparator(name, L", ");
    }
    Flush(pipe, line);
}

void ExpressionEvaluator::GetSupportedOperators(WStringArray& out)
{
    out.Clear();
    for (const OperatorRow* row = operatorTable_gb; row->name[0] != 0; ++row) {
        if (row->operandCount != 1)
            out.Add(row->name);
    }
}

void ExpressionEvaluator::GetSupportedFunctions(WStringArray& out)
{
    fnTable_gb.GetSupportedFunctions(out);
    out.Sort();
}

void ExpressionEvaluator::DisplaySupportedOperatorsAndFunctionsHelpText(
    Pipe& pipe, bool environment, const WString& operatorsTitle, const WString& functionsTitle)
{
    WriteTitle(pipe, operatorsTitle);
    WriteOperators(pipe);
    WriteTitle(pipe, functionsTitle);
    WriteFunctions(pipe);
    pipe.WriteLine(L"Run: \"CALC -help\" for a description of the expression evaluator and");
    pipe.WriteLine(L" the supported functions.");
    pipe.WriteLine(L"To fetch different instrument information use:");
    pipe.WriteLine(L" %%S{statusItem}     - to fetch a status value.");
    pipe.WriteLine(L" %%C{[section]key}   - to fetch a configuration file value.");
    pipe.WriteLine(L" %%U{usageItem}      - to fetch a usage log value.");
    if (environment) {
        pipe.WriteLine(L" %%E{variableName}   - to fetch an environment variable value.");
        pipe.WriteLine(L" variableName       - to fetch an environment variable value.");
    }
}
