#include "BuiltIns/BuiltIn.h"
#include "FileLines.h"
#include "RunningScript.h"
#include "ScriptRunner.h"
#include "SessionLog.h"

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
    Accept(arguments, options);
    const WString file = FindScript(arguments.At(0));
    FileLines script(file.ToUtf8());
    RecordedLines lines(script);
    RunningScript* const caller = RunningScript::GetInnermost();
    CommandRunner::Outcome result;
    RunScript(lines, file, GetPipe(), GetEnvironment(), [&](const ScriptFailure& failure) {
        if (result.code.IsError() && caller) // a line that fails twice, first by what it went on after
            caller->innerFailure = std::move(result);
        result = failure.outcome;
        result.command = run_gb.name;
        // What ends every script above would be placed by each of them.
        if (!CommandRunner::EndsCallers(result.code))
            result.message = FormatFailurePlace(file, failure) + result.message;
        return false;
    });
    SetFailureMessage(result.message);
    for (const WString& note : result.notes)
        AddNote(note);
    return result.code;
}
constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::File}};
} // namespace

constexpr CommandRecord run_gb = {L"Run", 2009, Create<Run>, usage_lc, {}, 0, arguments_lc, {1, 1}};
