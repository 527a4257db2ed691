#include "BuiltIns/BuiltIn.h"
#include "FileLines.h"
#include "RunningScript.h"
#include "ScriptRunner.h"

#include <filesystem>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Run <file>",
    L" Runs the commands of a script, one a line, up to the first that fails.",
    L" The script shares the environment variables of the line that runs it.",
    L" A final backslash continues a line, when there is a next one; a line that",
    L" begins with # is a comment. The file is looked for beside the script that",
    L" names it, then in the working folder.",
};

class Run : public BuiltIn
{
public:
    Run() : BuiltIn(run_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

/// The script's path, from the script that is being run.
WString FindScript(const WString& name)
{
    const RunningScript* const caller = RunningScript::GetInnermost();
    if (!caller)
        return name;
    std::error_code error;
    const auto path = std::filesystem::path(caller->name.ToUtf8()).parent_path() / name.ToUtf8();
    return std::filesystem::exists(path, error) ? WString::FromUtf8(path.string()) : name;
}

ExitCode Run::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options, 1, 1);
    const WString file = FindScript(arguments.At(0));
    FileLines lines(file.ToUtf8());
    ExitCode result;
    RunScript(lines, file, GetPipe(), GetEnvironment(), [&](const ScriptFailure& failure) {
        result = failure.outcome.code;
        // What ends every script above would be placed by each of them.
        const bool endsCallers = CommandRunner::EndsCallers(result);
        SetFailureMessage((endsCallers ? WString() : FormatFailurePlace(file, failure)) + failure.outcome.message);
        for (const WString& note : failure.outcome.notes)
            AddNote(note);
        return false;
    });
    return result;
}
} // namespace

constexpr CommandRecord run_gb = {L"Run", 2009, Create<Run>, usage_lc};
