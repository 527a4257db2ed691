// Runs the input as a script, with all commands of the shell and of its plug-ins. What does not end by itself is ended.

#include "Bench.h"
#include "BuiltIns/BuiltIns.h"
#include "Commands/CommandRunner.h"
#include "Commands/PluginLoader.h"
#include "Commands/RunObserver.h"
#include "Commands/ScriptText.h"
#include "DelayedStatus.h"
#include "Require.h"
#include "ScriptRunner.h"
#include "Text/Abort.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

/// A bench with all commands.
class CommandBench : public Bench
{
public:
    CommandBench() : Bench(SOURCE_DIR "/Shell/Profile")
    {
        AddBuiltIns();
        PluginLoader::Load(PLUGIN_FILE);
        PluginLoader::Load(SCRIPT_TOOLS_FILE);
    }
};

/// Ends loops, and looks at what each command comes to.
class Supervisor : public RunObserver
{
public:
    void OnBegin(const CommandRun& run) noexcept override
    {
        Require(run.depth <= CommandRunner::maxNesting, "runs are nested as deeply as is allowed");
        Count();
    }
    void OnCondition(const CommandRun&, const WString&, bool, const WString&) noexcept override { Count(); }
    void OnBadExpression(const CommandRun&, const WString& expression, std::size_t place) noexcept override
    {
        Require(place <= expression.Length() + 1, "an error stands within the expression");
    }
    void OnEnd(const CommandRun& run) noexcept override
    {
        const ExitCode& code = run.outcome.code;
        Require(!code.IsError() || code.GetCommandId() != 0 || code.GetModule() == ExitCode::hostModule,
            "a failure names its command, unless none could be run");
    }

private:
    unsigned int count = 0;

    void Count()
    {
        constexpr unsigned int patience = 300;
        if (++count > patience)
            Abort::Request();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static CommandBench bench;
    bench.Restore();
    const Supervisor supervisor;
    TextLines lines({reinterpret_cast<const char*>(bytes), size});
    ArrayPipe output;
    RunScript(lines, L"script", output, Environment(), [](const ScriptFailure& failure) {
        FormatFailurePlace(L"script", failure);
        return !CommandRunner::EndsCallers(failure.outcome.code);
    });
    Abort::Clear();
    DelayedStatus::FinishAtOnce();
    return 0;
}
