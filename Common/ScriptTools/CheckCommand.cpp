#include "Commands/RecordedCommand.h"
#include "Commands/ScriptText.h"
#include "DllRegistryUtils.h"
#include "FindingText.h"
#include "ScriptCheck.h"
#include "Text/Abort.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include <unistd.h>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Check [-json] <script> [...] [<name>=<value> ...]",
    L" Looks for what is wrong with scripts, without running them. Help and the",
    L" code of a finding, such as S001, explains it.",
    L"Arguments:",
    L" <script>        A file, or - for standard input.",
    L" <name>=<value>  A variable that is set before the scripts begin.",
    L"Options:",
    L" -json    Write the findings as JSON.",
    L" -colour  Colour them, for a terminal.",
    L"Example: Check Examples/Scripts/Tour.txt",
};

enum ExitNumber : unsigned int
{
    badOptionValue = 3,
    onlyWarnings = 10,
    hasErrors = 11,
    unreadable = 12
};

constexpr FlagOption json_lc(L"json", badOptionValue, L"Write the findings as JSON");
constexpr FlagOption colour_lc(L"colour", badOptionValue, L"Colour the findings, for a terminal");
constexpr OptionRecord options_lc[] = {json_lc, colour_lc};

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::File}};

CommandBase* CreateCheckCommand();

constexpr CommandRecord record_lc = {
    L"Check", 2016, CreateCheckCommand, usage_lc, options_lc, 0, arguments_lc, {1, ArgumentCount::any}};

class CheckCommand : public RecordedCommand
{
public:
    CheckCommand() : RecordedCommand(record_lc) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

private:
    bool isJson = false;
    bool isColoured = false;
    unsigned int scriptCount = 0;
    unsigned int errorCount = 0;
    unsigned int warningCount = 0;
    WString objects; // of JSON
    WString fault;   // of the first script that cannot be read

    void Check(const WString& name, const Environment& variables);
    void Write(const Finding& finding, FindingText& text, const WString& name);
    WString Summarize() const;
};

CommandBase* CreateCheckCommand()
{
    return new CheckCommand;
}

const AddToCommandVector addCheck(CreateCheckCommand);

/// Whether the word sets a variable, and is no file.
bool TrySetVariable(const WString& word, Environment& variables)
{
    const std::size_t nameEnd = word.View().find(L'=');
    const std::wstring_view name = word.View().substr(0, nameEnd);
    std::error_code error;
    if (nameEnd == word.View().npos || nameEnd == 0 || !std::ranges::all_of(name, IsNameCharacter) ||
        std::filesystem::exists(word.ToUtf8(), error))
        return false;
    variables.SetString(WString(name), WString(word.View().substr(nameEnd + 1)));
    return true;
}

std::string ReadStandardInput()
{
    std::string bytes;
    char block[0x1000];
    ssize_t size = 0;
    do {
        Abort::ThrowIfRequested();
        size = read(STDIN_FILENO, block, sizeof block);
        bytes.append(block, static_cast<std::size_t>(std::max<ssize_t>(size, 0)));
    } while (size > 0 || (size < 0 && errno == EINTR));
    return DecodeScriptText(std::move(bytes), "stdin");
}

WString Count(unsigned int count, const wchar_t* noun)
{
    return WString::Format(L"%u %s%s", count, noun, count == 1 ? L"" : L"s");
}

ExitCode CheckCommand::Main(ArgumentList& arguments, Options& options)
{
    isJson = options.TryGetFlag(json_lc);
    isColoured = options.TryGetFlag(colour_lc) && !isJson;
    Accept(arguments, options);

    Environment variables;
    WStringArray names;
    GetEnvironment().GetKeys(names);
    for (const WString& name : names) {
        WString value;
        if (GetEnvironment().TryGetString(name, value))
            variables.SetString(name, value);
    }
    WStringArray scripts;
    for (unsigned int index = 0; index < arguments.Count(); ++index) {
        if (!TrySetVariable(arguments.At(index), variables))
            scripts.Add(arguments.At(index));
    }
    if (scripts.IsEmpty())
        return ExitCode(CommonExit::wrongCount);
    for (const WString& script : scripts)
        Check(script, variables);
    GetPipe().DoWriteLine(isJson ? objects.IsEmpty() ? L"[]" : L"[\n" + objects + L"\n]" : Summarize());
    if (!fault.IsEmpty())
        Fail(unreadable, fault);
    if (errorCount + warningCount > 0)
        Fail(errorCount > 0 ? hasErrors : onlyWarnings, Summarize());
    return ExitCode(0);
}

/// One that cannot be read does not keep the others from being checked.
void CheckCommand::Check(const WString& name, const Environment& variables)
{
    WaitForTimeControlPointIfRequested();
    const bool isInput = name == L"-";
    const WString shownName = isInput ? L"stdin" : name;
    const std::string path = isInput ? "" : name.ToUtf8();
    try {
        const std::string text = isInput ? ReadStandardInput() : ReadScriptText(path);
        ++scriptCount;
        FindingText findingText(text, shownName, isColoured);
        for (const Finding& finding : CheckScript(text, path, variables).findings)
            Write(finding, findingText, shownName);
    } catch (const HostException& failure) {
        if (!IsHostError(failure, HostError::FileError))
            throw;
        if (fault.IsEmpty())
            fault = failure.GetMessage();
    }
}

void CheckCommand::Write(const Finding& finding, FindingText& text, const WString& name)
{
    Abort::ThrowIfRequested();
    ++(finding.isError ? errorCount : warningCount);
    if (isJson)
        objects.AppendWithSeparator(L"  " + FormatAsJson(finding, name), L",\n");
    else
        text.Write(finding, GetPipe());
}

WString CheckCommand::Summarize() const
{
    return Count(errorCount, L"error") + L", " + Count(warningCount, L"warning") + L" in " +
        Count(scriptCount, L"script");
}
} // namespace
