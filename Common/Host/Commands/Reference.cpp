#include "Commands/Reference.h"

#include "Instrument/System.h"
#include "Text/CharacterCase.h"
#include "Text/HostError.h"

#include <algorithm>

namespace {
bool TryGetValue(wchar_t kind, const WString& name, const Environment& environment, WString& value)
{
    switch (ToUpper(kind)) {
    case L'S': return System::status.TryGetFormattedString(name, value);
    case L'C': return Reference::TryGetConfig(name, value);
    case L'U': return Reference::TryGetUsage(name, value);
    default: return environment.TryGetString(name, value);
    }
}

bool StartsReference(std::wstring_view text)
{
    constexpr std::wstring_view kinds = L"SCUE";
    return text.size() >= 3 && text[0] == L'%' && text[2] == L'{' && kinds.find(ToUpper(text[1])) != kinds.npos;
}
} // namespace

WString Reference::ReplaceAll(const WString& text, const Environment& environment)
{
    WString result;
    std::wstring_view rest = text.View();
    while (!rest.empty()) {
        if (!StartsReference(rest)) {
            result += rest.front();
            rest.remove_prefix(1);
            continue;
        }
        const std::wstring_view reference = rest.substr(0, rest.find(L'}'));
        const WString name = WString(reference.substr(3)).Trim();
        WString value;
        const bool closed = reference.size() < rest.size();
        if (!closed || !TryGetValue(reference[1], name, environment, value))
            throw HostException(HostError::UnknownReference, WString(rest.substr(0, reference.size() + closed)));
        result += value;
        rest.remove_prefix(reference.size() + 1);
    }
    return result;
}

bool Reference::TrySplitConfigName(const WString& name, WString& section, WString& key)
{
    const std::wstring_view text = name.View();
    const bool bracketed = text.starts_with(L'[');
    const auto end = bracketed ? text.find(L']') : text.find_first_of(L" \t");
    if (end == text.npos)
        return false;
    section = WString(text.substr(bracketed, end - bracketed)).Trim();
    key = WString(text.substr(end + 1)).Trim();
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
