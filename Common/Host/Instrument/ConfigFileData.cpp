#include "Instrument/ConfigFileData.h"

#include "Instrument/IniFile.h"
#include "Text/HostError.h"
#include "Text/NumberText.h"

#include <concepts>
#include <mutex>
#include <optional>
#include <vector>

struct ConfigFileData::Data
{
    struct Change
    {
        WString section;
        WString key;
        std::optional<WString> value; // none for a key that was deleted
    };

    std::mutex lock;
    std::unique_ptr<IniFile> file = std::make_unique<IniFile>(); // as this process last saw it
    std::unique_ptr<IniFile> changed;                            // with the changes that are not saved, if any
    std::vector<Change> changes;
    ConfigMetaData metaData;

    // Called with the lock held.
    const IniFile& Get() const { return changed ? *changed : *file; }
    bool TryMake(const Change& change);
    void Save();
    void DropChanges() noexcept;
};

static bool TryApply(IniFile& file, const WString& section, const WString& key, const std::optional<WString>& value)
{
    if (!value)
        return file.TryDelete(section, key);
    file.Set(section, key, *value);
    return true;
}

bool ConfigFileData::Data::TryMake(const Change& change)
{
    auto copy = std::make_unique<IniFile>(Get());
    if (!TryApply(*copy, change.section, change.key, change.value))
        return false;
    changes.push_back(change);
    changed = std::move(copy);
    return true;
}

void ConfigFileData::Data::Save()
{
    const WholeFile::Lock fileLock(file->GetPath());
    if (file->IsOutdated()) {
        changed = std::make_unique<IniFile>();
        changed->Load(file->GetPath());
        for (const auto& [section, key, value] : changes)
            TryApply(*changed, section, key, value);
    }
    (changed ? *changed : *file).Save();
    if (changed)
        file = std::move(changed);
}

void ConfigFileData::Data::DropChanges() noexcept
{
    changes.clear();
    changed.reset();
}

static bool TryRead(const WString& text, bool& value, bool, bool)
{
    return text.TryGetBool(value);
}

static bool TryRead(const WString& text, double& value, double min, double max)
{
    return text.TryParseDouble(value, min, max);
}

template <std::integral Integer>
static bool TryRead(const WString& text, Integer& value, Integer min, Integer max)
{
    return TryReadWholeDecimal(text.begin(), text.end(), value, min, max);
}

template <typename Value>
static Value GetOrUseDefault(const ConfigFileData& config, const WString& section, const WString& key,
    ConfigDataType type, Value value, const ExitCode& failure, Value min, Value max)
{
    config.GetMetaData().Update(section, key, type, nullptr, min, max, value);
    WString text;
    if (config.TryGetString(section, key, text) && !TryRead(text, value, min, max))
        throw failure;
    return value;
}

ConfigFileData::ConfigFileData() : data(std::make_unique<Data>()) {}

ConfigFileData::~ConfigFileData() = default;

void ConfigFileData::Load(const std::string& path, const std::string& defaults)
{
    const std::lock_guard guard(data->lock);
    data->DropChanges();
    data->file->Load(path, defaults);
}

void ConfigFileData::Save()
{
    const std::lock_guard guard(data->lock);
    try {
        data->Save();
    } catch (...) {
        data->DropChanges();
        throw;
    }
    data->DropChanges();
}

void ConfigFileData::GetFaults(WStringArray& faults) const
{
    const std::lock_guard guard(data->lock);
    faults.Clear();
    for (const IniFile::Fault& fault : data->file->GetFaults())
        faults.Add(data->file->Describe(fault));
}

bool ConfigFileData::Contains(const WString& section, const WString& key) const
{
    WString value;
    return TryGetString(section, key, value);
}

bool ConfigFileData::TryGetString(const WString& section, const WString& key, WString& value) const
{
    const std::lock_guard guard(data->lock);
    return data->Get().TryGet(section, key, value);
}

bool ConfigFileData::TryGetBool(const WString& section, const WString& key, bool& value) const
{
    WString text;
    return TryGetString(section, key, text) && text.TryGetBool(value);
}

bool ConfigFileData::TryGetInt(const WString& section, const WString& key, int& value, int min, int max) const
{
    WString text;
    return TryGetString(section, key, text) && TryRead(text, value, min, max);
}

bool ConfigFileData::TryGetUInt(
    const WString& section, const WString& key, unsigned int& value, unsigned int min, unsigned int max) const
{
    WString text;
    return TryGetString(section, key, text) && TryRead(text, value, min, max);
}

bool ConfigFileData::TryGetDouble(
    const WString& section, const WString& key, double& value, double min, double max) const
{
    WString text;
    return TryGetString(section, key, text) && text.TryParseDouble(value, min, max);
}

bool ConfigFileData::GetBoolOrUseDefault(
    const WString& section, const WString& key, bool defaultValue, const ExitCode& failure) const
{
    return GetOrUseDefault(*this, section, key, ConfigDataType::Bool, defaultValue, failure, false, true);
}

int ConfigFileData::GetIntOrUseDefault(
    const WString& section, const WString& key, int defaultValue, const ExitCode& failure, int min, int max) const
{
    return GetOrUseDefault(*this, section, key, ConfigDataType::Int, defaultValue, failure, min, max);
}

unsigned int ConfigFileData::GetUIntOrUseDefault(const WString& section, const WString& key, unsigned int defaultValue,
    const ExitCode& failure, unsigned int min, unsigned int max) const
{
    return GetOrUseDefault(*this, section, key, ConfigDataType::UInt, defaultValue, failure, min, max);
}

double ConfigFileData::GetDoubleOrUseDefault(const WString& section, const WString& key, double defaultValue,
    const ExitCode& failure, double min, double max) const
{
    return GetOrUseDefault(*this, section, key, ConfigDataType::Dbl, defaultValue, failure, min, max);
}

WString ConfigFileData::GetStringOrUseDefault(const WString& section, const WString& key, const WString& defaultValue,
    const ExitCode& failure, int minLength, int maxLength) const
{
    data->metaData.UpdateStr(section, key, nullptr, minLength, maxLength, defaultValue.ToCString());
    WString value;
    if (!TryGetString(section, key, value))
        return defaultValue;
    const auto length = static_cast<long long>(value.Length());
    if (length < minLength || (maxLength >= 0 && length > maxLength))
        throw failure;
    return value;
}

void ConfigFileData::SetString(const WString& section, const WString& key, const WString& value)
{
    if (!IniFile::CanHold(section, key, value))
        throw HostException(HostError::WrongArguments, L"the settings file cannot hold [" + section + L"] " + key);
    const std::lock_guard guard(data->lock);
    data->TryMake({section, key, value});
}

bool ConfigFileData::TryDelete(const WString& section, const WString& key)
{
    const std::lock_guard guard(data->lock);
    return data->TryMake({section, key, std::nullopt});
}

void ConfigFileData::GetSections(WStringArray& sections) const
{
    const std::lock_guard guard(data->lock);
    data->Get().GetSections(sections);
}

void ConfigFileData::GetKeys(const WString& section, WStringArray& keys) const
{
    const std::lock_guard guard(data->lock);
    data->Get().GetKeys(section, keys);
}

ConfigMetaData& ConfigFileData::GetMetaData() const
{
    return data->metaData;
}
