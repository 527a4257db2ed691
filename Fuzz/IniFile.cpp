// Loads, changes, saves and reloads the input behind its first line as a file of settings. The first line,
// "section]key=value", is the setting that changes.

#include "Instrument/IniFile.h"
#include "Require.h"
#include "Support/TemporaryFolder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>

namespace {

using Settings = std::map<std::pair<std::wstring, std::wstring>, std::wstring>;

std::wstring ToLower(const WString& text)
{
    return std::wstring(text.ToLowerCase().View());
}

Settings GetSettings(const IniFile& file)
{
    Settings settings;
    WStringArray sections;
    file.GetSections(sections);
    for (const WString& section : sections) {
        WStringArray keys;
        file.GetKeys(section, keys);
        for (const WString& key : keys) {
            WString value;
            Require(file.TryGet(section, key, value), "a key that is listed is there");
            settings[{ToLower(section), ToLower(key)}] = value.View();
        }
    }
    return settings;
}

/// Saves the file, and loads it again.
IniFile Reload(IniFile& file)
{
    file.Save();
    Require(!file.IsOutdated(), "a file is as it was saved");
    IniFile reloaded;
    reloaded.Load(file.GetPath());
    Require(GetSettings(reloaded) == GetSettings(file), "a file gives back what was saved");
    return reloaded;
}

struct Change
{
    WString section;
    WString key;
    WString value;

    explicit Change(std::string_view line)
    {
        const std::size_t sectionEnd = std::min(line.find(']'), line.size());
        section = WString::FromUtf8(line.substr(0, sectionEnd)).Trim();
        line.remove_prefix(std::min(sectionEnd + 1, line.size()));
        const std::size_t keyEnd = std::min(line.find('='), line.size());
        key = WString::FromUtf8(line.substr(0, keyEnd)).Trim();
        value = WString::FromUtf8(line.substr(std::min(keyEnd + 1, line.size()))).Trim();
    }
};

/// Deletes the setting if it is there, makes it, deletes it and makes it again.
void CheckChanges(IniFile& file, const Change& change)
{
    if (!IniFile::CanHold(change.section, change.key, change.value))
        return;
    const std::size_t faults = file.GetFaults().size();
    const std::pair name(ToLower(change.section), ToLower(change.key));
    Settings expected = GetSettings(file);
    bool isThere = expected.contains(name);
    for (int step = 0; step < 4; ++step, isThere = !isThere) {
        if (isThere) {
            expected.erase(name);
            Require(file.TryDelete(change.section, change.key), "a setting that is there can be deleted");
        } else {
            expected[name] = WString::FromUtf8(change.value.ToUtf8()).View();
            file.Set(change.section, change.key, change.value);
        }
        Require(GetSettings(file) == expected, "one setting has changed, and the others are as they were");
        Require(Reload(file).GetFaults().size() == faults, "what was saved is understood as before");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size)
{
    static const TemporaryFolder folder;
    const std::string input(reinterpret_cast<const char*>(bytes), size);
    const std::size_t end = std::min(input.find('\n'), input.size());
    const std::string text = input.substr(std::min(end + 1, input.size()));
    IniFile file;
    file.Load(folder.Write("settings.ini", text));
    for (const IniFile::Fault& fault : file.GetFaults())
        file.Describe(fault);
    Reload(file);
    Require(folder.Read("settings.ini") == text, "a file that nothing was set in stays as it is");
    CheckChanges(file, Change(std::string_view(input).substr(0, end)));
    return 0;
}
