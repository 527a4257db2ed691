#include "ScriptFiles.h"

#include "CommandCheck.h"
#include "Commands/CommandLine.h"
#include "Commands/ScriptReader.h"
#include "Commands/ScriptText.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

/// What tells a file from others, however it is named.
static std::string MakeKey(const std::string& file)
{
    std::error_code error;
    const fs::path path = fs::weakly_canonical(file, error);
    return error ? file : path.string();
}

bool IsRun(const CommandText& command)
{
    return command.entry && command.entry->name == L"Run";
}

WString GetRunFile(std::wstring_view line, const CommandText& command)
{
    const bool isKnown = IsRun(command) && command.words.size() == 1 && command.references.empty() && command.isClosed;
    return isKnown ? CommandLine::Unquote(command.words[0].In(line)) : WString();
}

ScriptFiles::ScriptFiles(const std::string& path) : ownKey(path.empty() ? "" : MakeKey(path)) {}

const std::string& ScriptFiles::GetKey(const std::string& file)
{
    std::string& key = keys[file];
    if (key.empty())
        key = MakeKey(file);
    return key;
}

std::string ScriptFiles::Find(const WString& name, const std::string& callerPath)
{
    std::error_code error;
    const fs::path beside = fs::path(callerPath).parent_path() / name.ToUtf8();
    return !callerPath.empty() && fs::exists(beside, error) ? beside.string() : name.ToUtf8();
}

WString ScriptFiles::GetFault(const std::string& file)
{
    std::error_code error;
    const fs::file_status status = fs::status(file, error);
    if (fs::exists(status) && !fs::is_regular_file(status) && !fs::is_directory(status))
        return WString(); // a pipe, of which nothing is known before it is read
    return Read(file).fault;
}

ScriptFiles::Script& ScriptFiles::Read(const std::string& file)
{
    const auto [place, isNew] = scripts.try_emplace(GetKey(file));
    Script& script = place->second;
    if (!isNew)
        return script;
    std::string text;
    try {
        text = ReadScriptText(file);
    } catch (const HostException& failure) {
        script.fault = failure.GetMessage();
        return script;
    }
    TextLines lines(text);
    ScriptReader reader(lines);
    bool goesOn = true;
    for (std::string line; reader.TryRead(line);) {
        Abort::ThrowIfRequested();
        const WString wide = WString::FromUtf8(line);
        const CommandText command = ReadCommandText(wide.View(), {0, wide.Length()});
        std::vector<LineFinding> findings;
        CommandCheck(wide.View(), script.names, findings).Check(command);
        AddCommand(wide.View(), command, !goesOn, file, script);
        goesOn = goesOn && findings.empty() && GoesOn(command);
    }
    return script;
}

void ScriptFiles::AddCommand(
    std::wstring_view line, const CommandText& command, bool isConditional, const std::string& file, Script& script)
{
    script.names.AddFrom(line, command);
    if (const WString name = GetRunFile(line, command); !name.IsEmpty())
        script.runs.push_back({Find(name, file), isConditional});
    else if (IsRun(command))
        script.names.AddAll(L'E');
    for (const PartText& part : command.parts) {
        for (const CommandText& inner : part.commands)
            AddCommand(line, inner, true, file, script);
    }
}

void ScriptFiles::AddNames(const std::string& file, KnownNames& names)
{
    if (!added.insert(GetKey(file)).second)
        return;
    const Script& script = Read(file);
    names.Add(script.names);
    if (!script.fault.IsEmpty()) // it may set any
        names.AddAll(L'E');
    for (const Script::Run& run : script.runs)
        AddNames(run.file, names);
}

ScriptFiles::Recursion ScriptFiles::FindRecursion(const std::string& file)
{
    const auto [known, isNew] = recursions.try_emplace(GetKey(file), Recursion::None);
    if (!isNew)
        return known->second;
    std::set<std::string> callers;
    if (!ownKey.empty())
        callers.insert(ownKey);
    std::set<std::string> done;
    return known->second = FindRecursion(file, callers, done);
}

ScriptFiles::Recursion ScriptFiles::FindRecursion(
    const std::string& file, std::set<std::string>& callers, std::set<std::string>& done)
{
    const std::string key = GetKey(file);
    if (callers.contains(key))
        return Recursion::Certain;
    if (!done.insert(key).second)
        return Recursion::None;
    callers.insert(key);
    Recursion worst = Recursion::None;
    for (const Script::Run& run : Read(file).runs) {
        const Recursion found = FindRecursion(run.file, callers, done);
        worst = std::max(worst, run.isConditional ? std::min(found, Recursion::Possible) : found);
    }
    callers.erase(key);
    return worst;
}
