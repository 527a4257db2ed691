// Runs the command lines of its arguments on the bench of a data folder, one after the other, up to one that fails:
//     ./run data 'Set x=6*7' 'Echo x is %E{x}'
#include "Commands/CommandRunner.h"
#include "Commands/PluginLoader.h"
#include "Instrument/System.h"
#include "Text/HostError.h"

#include <iostream>

/// Takes the lines that commands write.
class Output : public Pipe
{
public:
    void DoWriteLine(const WString& line) override { std::cout << line.ToUtf8() << '\n'; }
};

/// Opens the bench in the data folder and loads the commands.
static void Start(const std::string& dataFolder)
{
    const std::string folder = PluginLoader::GetFolder();
    for (const WString& report : System::Start(dataFolder, folder + "/Profile"))
        std::cerr << report.ToUtf8() << '\n';
    for (const char* plugin : {"/ExpressionEvaluator.dll", "/BenchCommands.dll"})
        PluginLoader::Load(folder + plugin);
}

int main(int count, char** texts)
try {
    Start(count > 1 ? texts[1] : "data");
    Output output;
    const Environment environment; // what Set sets, for the lines behind it
    for (int i = 2; i < count; ++i) {
        const auto outcome = CommandRunner::Run(WString::FromUtf8(texts[i]), output, environment, 0);
        if (outcome.code.IsError()) {
            std::cerr << (outcome.code.ToString() + L" " + outcome.message).ToUtf8() << '\n';
            return 1;
        }
    }
    System::usage.WriteCounts();
    return 0;
} catch (const HostException& failure) {
    std::cerr << failure.GetMessage().ToUtf8() << '\n';
    return 1;
}
