#include "Commands/Reference.h"

#include "Instrument/System.h"
#include "Text/HostError.h"
#include "Text/ReferenceText.h"

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
            throw HostException(
                HostError::UnknownReference, WString(rest.substr(found.start, found.end - found.start)));
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
