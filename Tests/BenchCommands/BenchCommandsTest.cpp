// A program that is no shell, linked with the host alone, runs command lines: it loads the evaluator and, as one more
// plug-in, the shell's commands.

#include "Commands/CommandRunner.h"
#include "Commands/PluginLoader.h"
#include "Instrument/System.h"
#include "Services/FileDescriptor.h"
#include "Support/HostTexts.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryFolder.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>

namespace {
class BenchCommands : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        const std::string libraries = PluginLoader::GetFolder();
        System::Start(GetFolder().GetPath(), libraries + "/Profile");
        PluginLoader::Load(libraries + "/ExpressionEvaluator.dll");
        PluginLoader::Load(libraries + "/BenchCommands.dll");
        std::filesystem::current_path(GetFolder().GetPath());
    }

    static const TemporaryFolder& GetFolder()
    {
        static const TemporaryFolder folder;
        return folder;
    }

    /// What the line writes and, where it fails, the code and the message below that.
    std::string Run(const std::string& line)
    {
        ArrayPipe output;
        const auto outcome = CommandRunner::Run(WString::FromUtf8(line), output, environment, 0);
        if (outcome.code.IsError())
            output.lines.Add(outcome.code.ToString() + L" " + outcome.message);
        return Join(output.lines);
    }

    const ManualClock clock;
    Environment environment;
};
} // namespace

TEST_F(BenchCommands, RunInAnotherProgram)
{
    GetFolder().Write("script.txt",
        "# a script\n"
        "Set y=2 \\\n"
        "*x\n"
        "Echo y is %E{y}\n"
        "Run inner.txt\n");
    GetFolder().Write("inner.txt", "Echo inner\nCalc 1/0\n");
    const std::pair<const char*, const char*> rows[] = {
        {"Set x=21", ""},
        {"Echo hi %E{x}", "hi 21"},
        {"While -c3 true Do Echo %E{x}", "21\n21\n21"},
        {"AssertFail 1043:505:133 Calc -q 1/0", ""},
        {"AssertFail 1:2:3 Calc -q 1+1", "2001:0:6 The command succeeded"},
        {"Status TempOptics", "TempOptics=36.8"},
        {"Status -n Steps=3", ""},
        {"Status -d2.5 Steps=5", ""},
        {"Status Steps", "Steps=3"},
        {"Wait 2.5", ""},
        {"Status Steps", "Steps=5"},
        {"Status -json Steps", "{\n  \"Steps\": 5\n}"},
        {"Config -n [Embedding]Key=1", ""},
        {"Calc GetConfigInt(\"Embedding\",\"Key\",2)", "1"},
        {"Usage Steps=4", ""},
        {"Usage Steps", "Steps=4"},
        {"Log -c", ""},
        {"Stats 1,2,3", "n 3  mean 2  sd 1  min 1  max 3"},
        {"Help nothing", "2006:0:5 There is no command or function nothing"},
        {"Test NoTest", "2011:0:5 There is no test NoTest"},
        {"Run script.txt",
            "y is 42\ninner\nError:\n  Divide by zero\n  1/0\n    ^\n"
            "1043:505:133 script.txt:5: Run: inner.txt:2: Calc: Divide by zero"},
        {"While -c3 true Do Echo once; Exit 3", "once\n2005:1:11 Told to exit"},
    };
    for (const auto& [line, shown] : rows)
        EXPECT_EQ(Run(line), shown) << line;
}

TEST_F(BenchCommands, AnAbortOfAnotherThreadEndsTheWaitForAScript)
{
    const std::string pipe = GetFolder().Path("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const FileDescriptor writer(open(pipe.c_str(), O_RDWR | O_CLOEXEC)); // who never writes
    const std::jthread other([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        Abort::Request();
    });
    EXPECT_EQ(Run("Run pipe"), "2009:1:4 Aborted");
    Abort::Clear();
}
