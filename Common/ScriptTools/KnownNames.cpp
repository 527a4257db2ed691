#include "KnownNames.h"

#include "Commands/Reference.h"
#include "Text/CharacterCase.h"
#include "Text/ReferenceText.h"

#include <algorithm>

namespace {
constexpr std::wstring_view allKinds_lc = L"ESCUF";
constexpr std::size_t manyNames = 1000; // among which none is looked for that is similar

WString MakeReference(wchar_t kind, const WString& name)
{
    WString reference = L"%";
    reference += kind;
    return reference + L"{" + name + L"}";
}

/// The name as "[section]key" where it is that of a setting, which may be written otherwise.
WString Normalize(wchar_t kind, const WString& name)
{
    WString section;
    WString key;
    return kind == L'C' && Reference::TrySplitConfigName(name, section, key) ? L"[" + section + L"]" + key : name;
}

/// The shell counts by itself.
bool IsKeptByShell(const WString& counter)
{
    return counter.StartsWith(L"Command.", true) || counter.StartsWith(L"System.", true);
}
} // namespace

wchar_t GetReferenceKind(ArgumentKind kind)
{
    switch (kind) {
    case ArgumentKind::Variable: return L'E';
    case ArgumentKind::StatusItem: return L'S';
    case ArgumentKind::Setting: return L'C';
    case ArgumentKind::Counter: return L'U';
    default: return 0;
    }
}

KnownNames::KnownNames(const Environment& variables)
{
    WStringArray names;
    variables.GetKeys(names);
    for (const WString& name : names)
        Add(L'E', name);
}

void KnownNames::Add(wchar_t kind, const WString& name)
{
    kinds[kind].names.insert(Normalize(kind, name));
}

void KnownNames::Add(const KnownNames& others)
{
    for (const auto& [kind, added] : others.kinds) {
        Names& own = kinds[kind];
        own.names.insert(added.names.begin(), added.names.end());
        own.isAny = own.isAny || added.isAny;
    }
}

void KnownNames::AddFrom(std::wstring_view line, const CommandText& command)
{
    if (!command.entry)
        return;
    if (!command.entry->record) { // which may do anything
        for (const wchar_t kind : allKinds_lc)
            AddAll(kind);
        return;
    }
    for (const wchar_t* const name : command.entry->record->variables)
        Add(L'E', name);
    for (const OptionText& option : command.options) {
        if (option.row && option.row->kind == OptionKind::File)
            AddFile(option);
    }
    const wchar_t kind = command.parts.size() < 2 ? L'\0' : GetReferenceKind(command.parts[0].record->kind);
    if (kind == 0)
        return;
    const Span name = command.parts[0].place;
    if (command.DependsOnValue(name))
        AddAll(kind);
    else
        Add(kind, WString(name.In(line)));
}

/// A name that stands behind a blank, or depends on a value, may be any.
void KnownNames::AddFile(const OptionText& option)
{
    const WString name = option.text.Substring(static_cast<unsigned int>(std::wstring_view(option.row->name).size()));
    if (name.IsEmpty() || !option.isJudged)
        AddAll(L'F');
    else
        Add(L'F', name);
}

bool KnownNames::IsMade(wchar_t kind, const WString& name) const
{
    const auto found = kinds.find(kind);
    if (kind == L'U' && IsKeptByShell(name))
        return true;
    return found != kinds.end() && (found->second.isAny || found->second.names.contains(Normalize(kind, name)));
}

bool KnownNames::IsSectionMade(const WString& section) const
{
    const auto found = kinds.find(L'C');
    const WString beginning = L"[" + section + L"]";
    return found != kinds.end() &&
        (found->second.isAny || std::ranges::any_of(found->second.names, [&](const WString& name) {
            return name.StartsWith(beginning, true);
        }));
}

bool KnownNames::Contains(wchar_t kind, const WString& name) const
{
    static const Environment none;
    if (IsMade(kind, name))
        return true;
    if (kind == L'E')
        return false;
    const WString reference = MakeReference(kind, name);
    const auto [found, isNew] = onBench.try_emplace(reference);
    if (isNew)
        found->second = Reference::Exists(reference, none);
    return found->second;
}

WString KnownNames::FindSimilar(wchar_t kind, const WString& name) const
{
    SimilarName similar(name);
    Offer(kind, similar);
    if (kind == L'E' || !similar.Get().IsEmpty())
        return similar.Get();
    const WString meant = Reference::FindSimilar(MakeReference(kind, name), Environment());
    return meant.IsEmpty() ? meant : WString(ReferenceText::Read(meant.View()).name);
}

void KnownNames::Offer(wchar_t kind, SimilarName& similar) const
{
    const auto found = kinds.find(kind);
    if (found == kinds.end() || found->second.names.size() >= manyNames)
        return;
    for (const WString& name : found->second.names)
        similar.Offer(name);
}
