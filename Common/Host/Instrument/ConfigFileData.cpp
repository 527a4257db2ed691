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
    IniFile file;
    std::vector<Change> changes; // that are not saved
    ConfigMetaData metaData;

    void Reload(); // with the lock held
};

void ConfigFileData::Data::Reload()
{
    file.Load(file.GetPath());
    for (const auto& [section, key, value] : changes)
        if (value)
            file.Set(section, key, *value);
        else
            file.TryDelete(section, key);
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

void ConfigFileData::Load(const std::string& path)
{
    const std::lock_guard guard(data->lock);
    data->file.Load(path);
    data->changes.clear();
}

void ConfigFileData::Save()
{
    const std::lock_guard guard(data->lock);
    const WholeFile::Lock fileLock(data->file.GetPath());
    if (data->file.IsOutdated())
        data->Reload();
    data->file.Save();
    data->changes.clear();
}

bool ConfigFileData::Contains(const WString& section, const WString& key) const
{
    WString value;
    return TryGetString(section, key, value);
}

bool ConfigFileData::TryGetString(const WString& section, const WString& key, WString& value) const
{
    const std::lock_guard guard(data->lock);
    return data->file.TryGet(section, key, value);
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
    data->file.Set(section, key, value);
    data->changes.push_back({section, key, value});
}

bool ConfigFileData::TryDelete(const WString& section, const WString& key)
{
    const std::lock_guard guard(data->lock);
    if (!data->file.TryDelete(section, key))
        return false;
    data->changes.push_back({section, key, std::nullopt});
    return true;
}

void ConfigFileData::GetSections(WStringArray& sections) const
{
    const std::lock_guard guard(data->lock);
    data->file.GetSections(sections);
}

void ConfigFileData::GetKeys(const WString& section, WStringArray& keys) const
{
    const std::lock_guard guard(data->lock);
    data->file.GetKeys(section, keys);
}

ConfigMetaData& ConfigFileData::GetMetaData() const
{
    return data->metaData;
}
