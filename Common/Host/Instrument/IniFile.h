#pragma once

#include "Services/WholeFile.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <memory>
#include <string>
#include <vector>

/// The sections and keys of an INI file, both in any case, without the blanks around names and values. Of a key that
/// stands there twice the last counts. Whatever is not set or deleted stays as it stands in the file, byte by byte:
/// comments, line ends, the order, and lines that are not understood. Not locked.
class IniFile
{
public:
    /// A line that is not understood.
    struct Fault
    {
        unsigned int line; // from 1
        WString reason;
    };

    IniFile();
    IniFile(const IniFile& other);
    IniFile& operator=(IniFile&& other) noexcept;
    ~IniFile();

    /// Replaces everything by the contents of the file, in UTF-8; in place of an absent file serves that of
    /// `defaults`, and if it is absent too there is nothing. Throws HostException (FileError or Aborted), and then
    /// there is nothing, and the file counts as outdated for as long as it is there.
    void Load(const std::string& path, const std::string& defaults = "");
    /// True when there is a file other than the one that was loaded or saved.
    bool IsOutdated() const;
    /// Writes the file that was loaded, in one step. Throws HostException(FileError). To keep what others saved, hold
    /// its WholeFile::Lock and load it again first if it is outdated.
    void Save();
    const std::string& GetPath() const noexcept { return path; }
    const std::vector<Fault>& GetFaults() const noexcept;
    /// The fault in one line with its place in the file.
    WString Describe(const Fault& fault) const;

    bool TryGet(const WString& section, const WString& key, WString& value) const;
    /// The number of the line in the file that was loaded that has the key; 0 when there is none.
    unsigned int GetLine(const WString& section, const WString& key) const;
    /// False for a line break, or for characters in a name that mean something else there: the file could not keep
    /// them.
    static bool CanHold(const WString& section, const WString& key, const WString& value);
    /// Sets a value that the file can hold, in place of the one that is there, or behind the section's last key.
    void Set(const WString& section, const WString& key, const WString& value);
    bool TryDelete(const WString& section, const WString& key);
    /// In the order of the file.
    void GetSections(WStringArray& sections) const;
    void GetKeys(const WString& section, WStringArray& keys) const;

private:
    struct Contents;
    std::unique_ptr<Contents> contents;
    std::string path;
    FileStamp stamp;
};
