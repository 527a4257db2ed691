#include "BuiltIns/BuiltIn.h"
#include "Commands/CommandRegistry.h"
#include "Commands/EmbeddedResource.h"
#include "Commands/PluginLoader.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Plugins",
    L" Lists the plug-ins that are loaded, with their version records.",
};

class Plugins : public BuiltIn
{
public:
    Plugins() : BuiltIn(plugins_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

private:
    void Show(const std::string& file);
};

ExitCode Plugins::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options);
    CommandRegistry::GetEntries(); // which brings those that are loaded only when they are needed
    for (const std::string& file : PluginLoader::GetFiles())
        Show(file);
    return ExitCode(0);
}

void Plugins::Show(const std::string& file)
{
    GetPipe().DoWriteLine(WString::FromUtf8(file));
    for (EmbeddedResource lines(file, L"version"); !lines.EndOfFile();) {
        const WString line = lines.ReadLine();
        if (!line.IsEmpty())
            GetPipe().DoWriteLine(L"  " + line);
    }
}
} // namespace

constexpr CommandRecord plugins_gb = {L"Plugins", 2008, Create<Plugins>, usage_lc, {}, 0, {}, {0, 0}};
