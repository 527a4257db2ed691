#include "BuiltIns/BuiltIn.h"
#include "BuiltIns/HelpTexts.h"
#include "Commands/CommandLine.h"
#include "Commands/CommandRunner.h"
#include "Commands/TableFormatter.h"
#include "Instrument/System.h"
#include "Text/SimilarName.h"

#include <algorithm>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Help [<command, function or topic>]",
    L"       Help <exit code>",
    L"       Help <code of a finding>",
    L"       Help <pattern>",
    L" Lists the commands and topics, shows the usage of a command, describes a",
    L" function of the expression evaluator, tells about a topic, or explains an",
    L" exit code or what Check has found. A pattern, with the wildcards * and ?, is",
    L" looked for among the words that are said of commands, functions and topics,",
    L" and among the names of status items.",
    L" The examples can be pasted at the prompt.",
    L"Example: Help Round",
    L"         Help operators",
    L"         Help 1043:505:20",
    L"         Help S012",
    L"         Help temp*",
};

constexpr std::size_t lineLength = 79;
constexpr std::size_t meaningLength = 50; // of a row of a table

class Help : public BuiltIn
{
public:
    Help() : BuiltIn(help_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

private:
    void ListCommands();
    void Describe(const WString& name);
    bool TryDescribeFunction(const WString& name);
    bool TryDescribeTopic(const WString& name);
    bool TryExplainFinding(const WString& code);
    void ListFunctions();
    [[noreturn]] void FailAsUnknown(const WString& name);

    void Search(const WString& pattern);

    void Explain(const ExitCode& code);
    bool TryExplainByOptions(const CommandRecord& record, unsigned int number);
};

/// An exit code whatever the command, as AssertFail takes it: "*:505:20" is 0:505:20.
WString WithoutWildcard(const WString& code)
{
    return code.StartsWith(L"*:", false) ? L"0" + code.Substring(1) : code;
}

ExitCode Help::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options);
    ExitCode code;
    if (arguments.Count() == 0)
        ListCommands();
    else if (ExitCode::TryParse(WithoutWildcard(arguments.At(0)), code))
        Explain(code);
    else if (arguments.At(0).View().find_first_of(L"*?") != std::wstring_view::npos)
        Search(arguments.At(0));
    else
        Describe(arguments.At(0));
    return ExitCode(0);
}

WStringArray GetUsage(const CommandRegistry::Entry& command)
{
    ArrayPipe usage;
    CommandRunner::ShowUsage(command, usage);
    return std::move(usage.lines);
}

/// The first sentence below the usage lines.
WString GetMeaning(const CommandRegistry::Entry& command)
{
    WString text;
    for (const WString& line : GetUsage(command)) {
        if (line.EndsWith(L":", false) && !text.IsEmpty())
            break;
        if (line.StartsWith(L" ", false) && !line.StartsWith(L"     ", false))
            text.AppendWithSeparator(line.Trim(), L" ");
    }
    return GetFirstSentence(text);
}

WString GetText(const CommandRegistry::Entry& command)
{
    return HelpEntry{GetUsage(command)}.GetText();
}

void Help::ListCommands()
{
    WStringArray lines;
    for (const CommandRegistry::Entry& command : CommandRegistry::GetEntries()) {
        const WStringArray usage = GetUsage(command);
        WString line = usage.IsEmpty() ? command.name : usage[0];
        line.Replace(L"Usage: ", L" ", false);
        lines.Add(line);
    }
    lines.Sort();
    GetPipe().DoWriteLine(L"Commands:");
    for (const WString& line : lines)
        GetPipe().DoWriteLine(line);
    GetPipe().DoWriteLine(L"Topics:");
    for (const HelpEntry& topic : ReadHelpTexts(L"TOPICS.TXT"))
        GetPipe().DoWriteLine(L" " + topic.lines[0]);
    GetPipe().DoWriteLine(L"Help <command> shows its usage, Help <function> describes a function,");
    GetPipe().DoWriteLine(L"Help <topic> tells about it.");
}

/// A name may be one of several: "If" is a command and a function.
void Help::Describe(const WString& name)
{
    const CommandRegistry::Entry* const command = CommandRegistry::FindOrNull(name);
    if (command)
        CommandRunner::ShowUsage(*command, GetPipe());
    const bool isFunction = TryDescribeFunction(name);
    const bool isTopic = TryDescribeTopic(name);
    if (!command && !isFunction && !isTopic && !TryExplainFinding(name))
        FailAsUnknown(name);
}

/// The code is the first word of its heading.
bool Help::TryExplainFinding(const WString& code)
{
    CommandRegistry::GetEntries(); // the plug-in with the texts comes along with its commands
    for (const HelpEntry& entry : ReadHelpTexts(L"FINDINGS.TXT")) {
        WString entryCode;
        WString title;
        CommandLine::SplitName(entry.lines[0], entryCode, title);
        if (!entryCode.Equals(code.View(), true))
            continue;
        entry.Write(GetPipe());
        return true;
    }
    return false;
}

bool Help::TryDescribeFunction(const WString& name)
{
    for (const HelpEntry& entry : ReadHelpTexts(L"FUNCTIONS.TXT")) {
        const WStringArray names = entry.GetFunctionNames();
        if (std::ranges::none_of(names, [&](const WString& each) { return each.Equals(name.View(), true); }))
            continue;
        entry.Write(GetPipe());
        return true;
    }
    return false;
}

/// Behind the text stands what the plug-ins say under a heading with the name in it.
bool Help::TryDescribeTopic(const WString& name)
{
    const std::vector<HelpEntry> topics = ReadHelpTexts(L"TOPICS.TXT");
    const auto topic = std::ranges::find_if(
        topics, [&](const HelpEntry& entry) { return entry.GetTitle().Equals(name.View(), true); });
    if (topic == topics.end())
        return false;
    topic->Write(GetPipe());
    for (const HelpEntry& entry : ReadHelpTexts(L"HELP.TXT")) {
        if (entry.lines[0].ToLowerCase().IndexOf(name.ToLowerCase()) >= 0)
            entry.Write(GetPipe());
    }
    if (topic->GetTitle() == L"functions")
        ListFunctions();
    return true;
}

void Help::ListFunctions()
{
    for (const HelpEntry& entry : ReadHelpTexts(L"FUNCTIONS.TXT")) {
        if (entry.HasHeading())
            GetPipe().DoWriteLine(Shorten(L" " + entry.GetTitle() + L" - " + entry.GetMeaning(), lineLength));
        else
            entry.Write(GetPipe());
    }
}

void Help::FailAsUnknown(const WString& name)
{
    SimilarName similar(name);
    for (const CommandRegistry::Entry& command : CommandRegistry::GetEntries())
        similar.Offer(command.name);
    for (const HelpEntry& entry : ReadHelpTexts(L"FUNCTIONS.TXT"))
        similar.Offer(entry.GetFunctionNames());
    for (const HelpEntry& entry : ReadHelpTexts(L"TOPICS.TXT"))
        similar.Offer(entry.GetTitle());
    Fail(notFound, L"There is no command or function " + name + similar.GetQuestion());
}

/// Whether a word of the text, or a name within it, matches.
bool Matches(const WString& text, const WString& pattern)
{
    constexpr const wchar_t* separators = L" ,.;:()[]{}<>\"'=%|/*?!&+-";
    std::size_t position = 0;
    for (WString word = text.StrTok(separators, position); !word.IsEmpty(); word = text.StrTok(separators, position)) {
        if (word.IsWildcardMatch(pattern.ToCString(), true))
            return true;
    }
    return false;
}

/// A table row for each command, function and topic that has a matching word, and each status item of such a name.
void Help::Search(const WString& pattern)
{
    WStringArray rows;
    const auto offer = [&](const wchar_t* kind, const WString& text, const WString& name, const WString& meaning) {
        if (Matches(text, pattern))
            rows.Add(kind + (L"\t" + name) + L"\t" + Shorten(meaning, meaningLength));
    };
    for (const CommandRegistry::Entry& command : CommandRegistry::GetEntries())
        offer(L"command", GetText(command), command.name, GetMeaning(command));
    for (const HelpEntry& entry : ReadHelpTexts(L"FUNCTIONS.TXT")) {
        if (entry.HasHeading())
            offer(L"function", entry.GetText(), entry.GetFunctionNames()[0], entry.GetMeaning());
    }
    for (const HelpEntry& entry : ReadHelpTexts(L"TOPICS.TXT"))
        offer(L"topic", entry.GetText(), entry.GetTitle(), entry.GetMeaning());
    WStringArray items;
    System::status.GetNames(items);
    for (const WString& item : items) {
        WString value;
        if (System::status.TryGetFormattedString(item, value))
            offer(L"status item", item, item, value);
    }
    if (rows.IsEmpty())
        Fail(notFound, L"Nothing matches " + pattern);
    rows.Sort();
    TableFormatter table;
    table.AddRow(L"Kind\tName\tMeaning");
    for (const WString& row : rows)
        table.AddRow(row);
    table.WriteTable(GetPipe());
}

const CommandRegistry::Entry* FindCommandOrNull(unsigned int id)
{
    const auto& commands = CommandRegistry::GetEntries();
    const auto found =
        std::ranges::find_if(commands, [&](const CommandRegistry::Entry& entry) { return entry.commandId == id; });
    return found == commands.end() ? nullptr : &*found;
}

/// What the first two fields of an exit code stand for; empty where they are 0.
WString DescribeOrigin(const ExitCode& code, const CommandRegistry::Entry* command)
{
    constexpr unsigned int evaluatorModule = 505;
    WString text;
    if (code.GetCommandId() != 0)
        text = command ? command->name : WString::Format(L"command %d", code.GetCommandId());
    if (code.GetModule() == ExitCode::hostModule)
        text.AppendWithSeparator(L"the host", L", ");
    else if (code.GetModule() == evaluatorModule)
        text.AppendWithSeparator(L"the expression evaluator", L", ");
    else if (code.GetModule() != 0)
        text.AppendWithSeparator(WString::Format(L"module %d", code.GetModule()), L", ");
    return text;
}

/// Writes the errors whose pattern, the first word of their heading, matches the code.
void Help::Explain(const ExitCode& code)
{
    const CommandRegistry::Entry* const command = FindCommandOrNull(code.GetCommandId());
    const WString origin = DescribeOrigin(code, command);
    GetPipe().DoWriteLine(code.ToString() + (origin.IsEmpty() ? L"" : L" - ") + origin);
    bool isKnown =
        command && command->record && code.GetModule() == 0 && TryExplainByOptions(*command->record, code.GetNumber());
    for (const HelpEntry& entry : ReadHelpTexts(L"ERRORS.TXT")) {
        WString pattern;
        WString message;
        CommandLine::SplitName(entry.lines[0], pattern, message);
        if (!code.ToString().IsWildcardMatch(pattern.ToCString(), true))
            continue;
        GetPipe().DoWriteLine(L" " + message);
        entry.Write(GetPipe(), 1);
        isKnown = true;
    }
    if (!isKnown)
        GetPipe().DoWriteLine(L" No more is known of it.");
}

bool Help::TryExplainByOptions(const CommandRecord& record, unsigned int number)
{
    bool isKnown = false;
    for (const OptionRecord& option : record.options) {
        if (option.exitNumber != number)
            continue;
        GetPipe().WriteLine(L" Bad value of option -%s: %s", option.name, option.purpose);
        isKnown = true;
    }
    return isKnown;
}
constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Topic}};
} // namespace

constexpr CommandRecord help_gb = {L"Help", 2006, Create<Help>, usage_lc, {}, 0, arguments_lc, {0, 1}};
