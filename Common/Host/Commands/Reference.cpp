#include "Commands/Reference.h"

#include "Instrument/System.h"
#include "Text/HostError.h"
#include "Text/ReferenceText.h"
#include "Text/SimilarName.h"

using ReferenceText::Fault;

static bool TryGetValue(wchar_t kind, const WString& name, const Environment& environment, WString& value)
{
    switch (kind) {
    case L'S': return System::status.TryGetFormattedString(name, value);
    case L'C': return Reference::TryGetConfig(name, value);
    case L'U': return Reference::TryGetUsage(name, value);
    default: return environment.TryGetString(name, value);
    }
}

[[noreturn]] static void FailAt(const WString& reference, const Environment& environment)
{
    const WString meant = Reference::FindSimilar(reference, environment);
    throw HostException(HostError::UnknownReference, reference + DidYouMean(meant));
}

/// The setting of a name that is near; else, where the section is wrong, the section that is.
static WString FindSimilarSetting(const WString& name)
{
    WString section;
    WString key;
    if (!Reference::TrySplitConfigName(name, section, key))
        return WString();
    WStringArray sections;
    System::config.GetSections(sections);
    SimilarName setting(L"[" + section + L"]" + key);
    SimilarName otherSection(section);
    bool isSection = false;
    for (const WString& candidate : sections) {
        WStringArray keys;
        System::config.GetKeys(candidate, keys);
        for (const WString& candidateKey : keys)
            setting.Offer(L"[" + candidate + L"]" + candidateKey);
        otherSection.Offer(candidate);
        isSection = isSection || candidate.ToLowerCase() == section.ToLowerCase();
    }
    if (!setting.Get().IsEmpty() || isSection || otherSection.Get().IsEmpty())
        return setting.Get();
    return L"[" + otherSection.Get() + L"]" + key;
}

static WString FindSimilarName(wchar_t kind, const WString& name, const Environment& environment)
{
    WStringArray names;
    switch (kind) {
    case L'S': System::status.GetNames(names); break;
    case L'C': return FindSimilarSetting(name);
    case L'U': System::usage.GetNames(names); break;
    default: environment.GetKeys(names);
    }
    SimilarName similar(name);
    similar.Offer(names);
    return similar.Get();
}

bool Reference::Exists(const WString& reference, const Environment& environment)
{
    const ReferenceText::Reference read = ReferenceText::Find(reference.View());
    if (read.fault != Fault::None)
        return false;
    const WString name(read.name);
    WString value; // which an item may lack
    return read.kind == L'S' ? System::status.ContainsItem(name) : TryGetValue(read.kind, name, environment, value);
}

WString Reference::FindSimilar(const WString& reference, const Environment& environment)
{
    const ReferenceText::Reference read = ReferenceText::Find(reference.View());
    if (read.fault != Fault::None || Exists(reference, environment))
        return WString();
    const WString meant = FindSimilarName(read.kind, WString(read.name), environment);
    return meant.IsEmpty() ? meant : WString(std::wstring{L'%', read.kind, L'{'}) + meant + L"}";
}

WString Reference::ReplaceAll(const WString& text, const Environment& environment)
{
    WString result;
    std::wstring_view rest = text.View();
    for (;;) {
        const ReferenceText::Reference found = ReferenceText::Find(rest);
        result.Append(rest.substr(0, found.start));
        if (found.start == rest.size())
            return result;
        WString value;
        if (found.fault != Fault::None || !TryGetValue(found.kind, WString(found.name), environment, value))
            FailAt(WString(rest.substr(found.start, found.end - found.start)), environment);
        result += value;
        rest.remove_prefix(found.end);
    }
}

bool Reference::TrySplitConfigName(const WString& name, WString& section, WString& key)
{
    const ReferenceText::SettingName read = ReferenceText::ReadSettingName(name.View());
    if (read.fault != Fault::None)
        return false;
    section = WString(read.section);
    key = WString(read.key);
    return true;
}

bool Reference::TryGetConfig(const WString& name, WString& value)
{
    WString section;
    WString key;
    return TrySplitConfigName(name, section, key) && System::config.TryGetString(section, key, value);
}

bool Reference::TryGetUsage(const WString& name, WString& value)
{
    int count = 0;
    if (!System::usage.TryGetUsageValue(name.ToCString(), count))
        return false;
    value = WString::Format(L"%d", count);
    return true;
}
