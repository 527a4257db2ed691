#pragma once

#include "HostApi.h"
#include "Instrument/ConfigMetaData.h"
#include "Text/ExitCode.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <limits>
#include <memory>
#include <string>

/// Settings by section and key, both in any case, kept in an INI file of which all else survives a save. Safe under
/// threads. The Try operations return false, and write nothing, when the key is absent or its text is not of the type
/// or out of range. The OrUseDefault operations register the default with its type in the metadata; they return the
/// default for an absent key and throw the given exit code for a text that does not serve.
class HOST_API ConfigFileData
{
public:
    ConfigFileData();
    ~ConfigFileData();
    ConfigFileData(const ConfigFileData&) = delete;
    ConfigFileData& operator=(const ConfigFileData&) = delete;

    /// Replaces all settings by those of the file; in place of an absent file serves `defaults`, if it is given and
    /// there. Throws HostException (FileError with name and reason, or Aborted): there are no settings then, and none
    /// can be saved for as long as the file cannot be read.
    void Load(const std::string& path, const std::string& defaults = "");
    /// Writes what was set or deleted to the file, on top of what others saved there, which is taken over. Throws
    /// HostException (FileError, or Aborted while another process saves), and the changes since the last saving are
    /// undone, those of other threads too.
    void Save();
    /// A line for each line of the file that is not understood: the file, the number and why. They stay as they are.
    void GetFaults(WStringArray& faults) const;

    bool Contains(const WString& section, const WString& key) const;
    bool TryGetString(const WString& section, const WString& key, WString& value) const;
    bool TryGetBool(const WString& section, const WString& key, bool& value) const;
    bool TryGetInt(const WString& section, const WString& key, int& value, int min, int max) const;
    bool TryGetUInt(
        const WString& section, const WString& key, unsigned int& value, unsigned int min, unsigned int max) const;
    bool TryGetDouble(const WString& section, const WString& key, double& value,
        double min = std::numeric_limits<double>::lowest(), double max = std::numeric_limits<double>::max()) const;

    bool GetBoolOrUseDefault(
        const WString& section, const WString& key, bool defaultValue, const ExitCode& failure) const;
    bool GetBoolOrUseDefault(
        const WString& section, const WString& key, bool defaultValue, unsigned int exitNumber) const
    {
        return GetBoolOrUseDefault(section, key, defaultValue, ExitCode(exitNumber));
    }
    int GetIntOrUseDefault(
        const WString& section, const WString& key, int defaultValue, const ExitCode& failure, int min, int max) const;
    unsigned int GetUIntOrUseDefault(const WString& section, const WString& key, unsigned int defaultValue,
        const ExitCode& failure, unsigned int min, unsigned int max) const;
    double GetDoubleOrUseDefault(const WString& section, const WString& key, double defaultValue,
        const ExitCode& failure, double min, double max) const;
    /// The limits are those of the text's length.
    WString GetStringOrUseDefault(const WString& section, const WString& key, const WString& defaultValue,
        const ExitCode& failure, int minLength, int maxLength) const;

    void SetString(const WString& section, const WString& key, const WString& value);
    bool TryDelete(const WString& section, const WString& key);
    void GetSections(WStringArray& sections) const;
    void GetKeys(const WString& section, WStringArray& keys) const;

    ConfigMetaData& GetMetaData() const;

private:
    struct Data;
    std::unique_ptr<Data> data;
};
