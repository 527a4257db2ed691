#include "BuiltIns/BuiltIn.h"
#include "Commands/CommandRunner.h"
#include "Commands/EmbeddedResource.h"
#include "Commands/PluginLoader.h"
#include "Text/CharacterCase.h"
#include "Text/SimilarName.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Help [<command or function>]",
    L" Lists the commands, shows the usage of a command, or describes a function",
    L" of the expression evaluator.",
};

class Help : public BuiltIn
{
public:
    Help() : BuiltIn(help_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

private:
    void ListCommands();
    bool TryDescribeFunction(EmbeddedResource& texts, const WString& name);
    bool TryDescribeFunction(const WString& name);
    [[noreturn]] void FailAsUnknown(const WString& topic);
};

bool IsEntryStart(const WString& line)
{
    return !line.IsEmpty() && !IsWhiteSpace(line[0]);
}

/// The call forms of the first line of an entry, in front of what they do.
std::wstring_view GetForms(const WString& line)
{
    return line.View().substr(0, line.View().find(L" - "));
}

/// Offers the names that stand in front of a "(".
void OfferFunctions(std::wstring_view forms, SimilarName& similar)
{
    for (std::size_t end = forms.find(L'('); end != forms.npos; end = forms.find(L'(', end + 1)) {
        const std::wstring_view before = forms.substr(0, end);
        similar.Offer(WString(before.substr(before.rfind(L' ') + 1)));
    }
}

/// True for the first line of an entry that has a call form of this name, as in "Avg(n1, ...) or Average(...) - ...".
bool BeginsEntryOf(const WString& line, const WString& name)
{
    if (!IsEntryStart(line))
        return false;
    const WString forms = (L" " + WString(GetForms(line))).ToLowerCase();
    return forms.IndexOf(L" " + name.ToLowerCase() + L"(") >= 0;
}

ExitCode Help::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options, 0, 1);
    if (arguments.Count() == 0) {
        ListCommands();
        return ExitCode(0);
    }
    const WString& topic = arguments.At(0); // "If" is both
    const CommandRegistry::Entry* const command = CommandRegistry::FindOrNull(topic);
    if (command)
        CommandRunner::ShowUsage(*command, GetPipe());
    if (!TryDescribeFunction(topic) && !command)
        FailAsUnknown(topic);
    return ExitCode(0);
}

void Help::ListCommands()
{
    WStringArray lines;
    for (const CommandRegistry::Entry& command : CommandRegistry::GetEntries()) {
        ArrayPipe usage;
        CommandRunner::ShowUsage(command, usage);
        WString line = usage.lines.IsEmpty() ? command.name : usage.lines[0];
        line.Replace(L"Usage: ", L" ", false);
        lines.Add(line);
    }
    lines.Sort();
    GetPipe().DoWriteLine(L"Commands:");
    for (const WString& line : lines)
        GetPipe().DoWriteLine(line);
    GetPipe().DoWriteLine(L"Help <command> shows its usage, Help <function> describes a function.");
}

/// Looks through the texts of all plug-ins.
bool Help::TryDescribeFunction(const WString& name)
{
    for (const std::string& file : PluginLoader::GetFiles()) {
        EmbeddedResource texts(file, L"FUNCTIONS.TXT");
        if (TryDescribeFunction(texts, name))
            return true;
    }
    return false;
}

bool Help::TryDescribeFunction(EmbeddedResource& texts, const WString& name)
{
    bool found = false;
    while (!texts.EndOfFile()) {
        const WString line = texts.ReadLine();
        if (found && IsEntryStart(line))
            break;
        found = found || BeginsEntryOf(line, name);
        if (found)
            GetPipe().DoWriteLine(line);
    }
    return found;
}

void Help::FailAsUnknown(const WString& topic)
{
    SimilarName similar(topic);
    for (const CommandRegistry::Entry& command : CommandRegistry::GetEntries())
        similar.Offer(command.name);
    for (const std::string& file : PluginLoader::GetFiles()) {
        EmbeddedResource texts(file, L"FUNCTIONS.TXT");
        while (!texts.EndOfFile()) {
            const WString line = texts.ReadLine();
            if (IsEntryStart(line))
                OfferFunctions(GetForms(line), similar);
        }
    }
    Fail(notFound, L"There is no command or function " + topic + similar.GetQuestion());
}
} // namespace

constexpr CommandRecord help_gb = {L"Help", 2006, Create<Help>, usage_lc};
