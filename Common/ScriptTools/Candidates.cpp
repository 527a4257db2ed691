#include "Candidates.h"

#include "Commands/EmbeddedResource.h"
#include "Commands/Reference.h"
#include "ExpressionEvaluator.h"
#include "FunctionForms.h"
#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "Services/LogFile.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {
using View = std::wstring_view;
using Kind = Place::Kind;

bool IsKeyword(const WString& name)
{
    return ToLower(name[0]) >= L'a' && ToLower(name[0]) <= L'z';
}

bool BeginsWith(View text, View beginning)
{
    return EqualsIgnoreCase(text.substr(0, beginning.size()), beginning);
}

/// The first line of the usage text behind the command's name.
WString DescribeUsage(const CommandRecord& command)
{
    if (command.usage.empty())
        return WString();
    const UsageLine& line = command.usage.front();
    const WString usage = WString::Format(line.format, line.argument);
    const std::size_t name = usage.View().find(command.name, View(L"Usage: ").size());
    return name == View::npos ? usage : WString(usage.View().substr(name + View(command.name).size())).Trim();
}

std::string GetFolder(const std::string& path)
{
    return path.substr(0, path.rfind('/') + 1);
}
} // namespace

std::vector<Completion::Candidate> Candidates::Find()
{
    switch (place.kind) {
    case Kind::Command: AddCommands(); break;
    case Kind::Option: AddOptions(); break;
    case Kind::Operand: AddOperands(); break;
    case Kind::Operator: AddOperators(); break;
    case Kind::ReferenceKind: AddReferenceKinds(); break;
    case Kind::Reference: AddReferences(place.reference); break;
    case Kind::Argument: AddArguments(); break;
    case Kind::Nothing: break;
    }
    std::ranges::stable_sort(found, [](const Completion::Candidate& left, const Completion::Candidate& right) {
        return CompareIgnoreCase(left.label.View(), right.label.View()) < 0;
    });
    return std::move(found);
}

void Candidates::Offer(const WString& text, const WString& label, const WString& meaning)
{
    if (BeginsWith(text.View(), piece))
        found.push_back({text, label, meaning});
}

/// Offers the name of a value, as a word or, within a reference, in front of its closing brace.
void Candidates::OfferName(const WString& name, const WString& value)
{
    const bool isReference = place.kind == Kind::Reference;
    const bool needsQuotes = !isReference && !place.isQuoted && std::ranges::any_of(name, IsWhiteSpace);
    if (needsQuotes && BeginsWith(name.View(), piece))
        found.push_back({L"\"" + name + L"\"", name, L"= " + value});
    else
        Offer(name + (isReference ? L"}" : L""), name, L"= " + value);
}

void Candidates::AddCommands()
{
    for (const CommandRegistry::Entry& entry : CommandRegistry::GetEntries())
        Offer(entry.name + L" ", entry.name, entry.record ? DescribeUsage(*entry.record) : WString());
}

void Candidates::AddOptions()
{
    for (const OptionRecord& option : place.command->options) {
        const WString name = L"-" + WString(option.name);
        const bool isFlag = option.kind == OptionKind::Flag;
        Offer(name + (isFlag ? L" " : L""), name, option.purpose);
    }
}

/// Status items stand as references, and are offered where nothing else has the name.
void Candidates::AddOperands()
{
    AddFunctions();
    for (const WString& name : ExpressionEvaluator::GetBuiltInNames())
        Offer(name, name, L"");
    AddVariables(L"");
    if (found.empty())
        AddStatusReferences();
}

void Candidates::AddFunctions()
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    for (const WString& name : names) {
        if (!BeginsWith(name.View(), piece))
            continue;
        const FunctionForm form = GetFunctionForm(name);
        Offer(name + L"(", form.form, form.meaning);
    }
}

void Candidates::AddOperators()
{
    AddKeywords();
    if (piece.empty() && !found.empty())
        return;
    WStringArray names;
    ExpressionEvaluator::GetSupportedOperators(names);
    for (const WString& name : names) {
        if (IsKeyword(name))
            Offer(name.ToUpperCase() + L" ", name.ToUpperCase(), L"");
    }
}

void Candidates::AddKeywords()
{
    for (const wchar_t* keyword : place.keywords)
        Offer(keyword + WString(L" "), keyword, L"");
}

void Candidates::AddReferenceKinds()
{
    Offer(L"%S{", L"%S{", L"a status item");
    Offer(L"%C{", L"%C{", L"a setting, [section]key");
    Offer(L"%U{", L"%U{", L"a usage counter");
    Offer(L"%E{", L"%E{", L"a variable");
}

void Candidates::AddReferences(wchar_t kind)
{
    WStringArray names;
    WString value;
    switch (kind) {
    case L'S':
        System::status.GetNames(names);
        for (const WString& name : names)
            OfferName(name, System::status.TryGetFormattedString(name, value) ? value : WString(L"#NA"));
        break;
    case L'U':
        System::usage.GetNames(names);
        for (const WString& name : names) {
            if (BeginsWith(name.View(), piece) && Reference::TryGetUsage(name, value))
                OfferName(name, value);
        }
        break;
    case L'C': AddSettings(); break;
    default: AddVariables(L"}");
    }
}

void Candidates::AddStatusReferences()
{
    WStringArray names;
    System::status.GetNames(names);
    for (const WString& name : names) {
        WString value;
        if (BeginsWith(name.View(), piece) && System::status.TryGetFormattedString(name, value))
            found.push_back({L"%S{" + name + L"}", name, L"= " + value});
    }
}

void Candidates::AddVariables(const wchar_t* ending)
{
    WStringArray names;
    environment.GetKeys(names);
    for (const WString& name : names) {
        WString value;
        if (environment.TryGetString(name, value))
            Offer(name + ending, name, L"= " + value);
    }
}

/// A setting is found by its section, or by its key alone.
void Candidates::AddSettings()
{
    WStringArray sections;
    System::config.GetSections(sections);
    for (const WString& section : sections) {
        WStringArray keys;
        System::config.GetKeys(section, keys);
        for (const WString& key : keys) {
            const WString name = L"[" + section + L"]" + key;
            WString value;
            System::config.TryGetString(section, key, value);
            const std::size_t count = found.size();
            OfferName(name, value);
            if (found.size() == count &&
                (BeginsWith((section + L" " + key).View(), piece) || BeginsWith(key.View(), piece)))
                found.push_back({name + (place.kind == Kind::Reference ? L"}" : L""), name, L"= " + value});
        }
    }
}

void Candidates::AddEvents()
try {
    WStringArray names;
    OS9EventManager::GetNames(names);
    for (const WString& name : names) {
        OS9EventData* const event = OS9EventManager::GetOS9Event(name);
        if (!event)
            continue;
        OfferName(name, WString::Format(L"%d", event->Read()));
        event->ReleaseReference();
    }
} catch (const HostException&) { // the table cannot be used: Event says why
}

void Candidates::AddLogs()
{
    WStringArray names;
    LogFile::GetNames(names);
    for (const WString& name : names)
        Offer(name, name, L"");
}

void Candidates::AddTests()
{
    for (const AutomaticTestEntry& entry : CommandRegistry::GetTests())
        Offer(entry.name, entry.name, entry.title);
}

/// What is in the folder that the piece names, but not what is hidden there.
void Candidates::AddFiles()
{
    namespace fs = std::filesystem;
    const std::string folder = GetFolder(WString(piece).ToUtf8());
    std::error_code error;
    for (fs::directory_iterator file(folder.empty() ? "." : folder, error), end; file != end; file.increment(error)) {
        const std::string name = file->path().filename();
        if (error || name.starts_with('.'))
            continue;
        const bool isFolder = file->is_directory(error);
        const WString path = WString::FromUtf8(folder + name);
        const bool needsQuotes = !place.isQuoted && std::ranges::any_of(path, IsWhiteSpace);
        const WString ending = isFolder ? L"/" : place.isQuoted || needsQuotes ? L"\" " : L" ";
        if (BeginsWith(path.View(), piece))
            found.push_back(
                {(needsQuotes ? L"\"" : L"") + path + ending, WString::FromUtf8(name) + (isFolder ? L"/" : L""), L""});
    }
}

void Candidates::AddTopics()
{
    AddCommands();
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    for (const WString& name : names) {
        const bool isCommand = CommandRegistry::FindOrNull(name) != nullptr;
        if (!isCommand && BeginsWith(name.View(), piece))
            Offer(name, name, GetFunctionForm(name).meaning);
    }
    for (EmbeddedResource texts("/proc/self/exe", L"TOPICS.TXT"); !texts.EndOfFile();)
        OfferTopic(texts.ReadLine());
}

/// Offers the topic whose heading the line is: "name - meaning", at the left margin.
void Candidates::OfferTopic(const WString& line)
{
    constexpr View separator = L" - ";
    const std::size_t end = line.View().find(separator);
    if (end == View::npos || IsWhiteSpace(line[0]))
        return;
    const WString name(line.View().substr(0, end));
    Offer(name, name, WString(line.View().substr(end + separator.size())));
}

void Candidates::AddArguments()
{
    switch (place.argument) {
    case ArgumentKind::Variable: AddVariables(L""); break;
    case ArgumentKind::StatusItem: AddReferences(L'S'); break;
    case ArgumentKind::Setting: AddSettings(); break;
    case ArgumentKind::Counter: AddReferences(L'U'); break;
    case ArgumentKind::Event: AddEvents(); break;
    case ArgumentKind::Log: AddLogs(); break;
    case ArgumentKind::Test: AddTests(); break;
    case ArgumentKind::File: AddFiles(); break;
    case ArgumentKind::Topic: AddTopics(); break;
    default: break;
    }
    if (!piece.empty())
        AddKeywords();
}
