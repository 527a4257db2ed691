#include "BuiltIns/BuiltIn.h"
#include "FileLines.h"
#include "ScriptRunner.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Run <file>",
    L" Runs the commands of a script, one a line, up to the first that fails.",
    L" The script shares the environment variables of the line that runs it.",
    L" A final backslash continues a line, when there is a next one; a line that",
    L" begins with # is a comment.",
};

class Run : public BuiltIn
{
public:
    Run() : BuiltIn(run_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Run::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options, 1, 1);
    const WString& file = arguments.At(0);
    FileLines lines(file.ToUtf8());
    ExitCode result;
    RunScript(lines, GetPipe(), GetEnvironment(), [&](const ScriptFailure& failure) {
        result = failure.outcome.code;
        // What ends every script above would be placed by each of them.
        const bool endsCallers = CommandRunner::EndsCallers(result);
        SetFailureMessage((endsCallers ? WString() : FormatPlace(file, failure)) + failure.outcome.message);
        return false;
    });
    return result;
}
} // namespace

constexpr CommandRecord run_gb = {L"Run", 2009, Create<Run>, usage_lc};
