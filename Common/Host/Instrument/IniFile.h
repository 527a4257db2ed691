#pragma once

#include "Services/WholeFile.h"
#include "Text/WString.h"
#include "Text/WStringArray.h"

#include <memory>
#include <string>

/// The sections and keys of an INI file, both in any case, with the comments and the order of the file. Lines that are
/// neither comment, section nor "key=value" are dropped, as are blanks around names and values. Not locked.
class IniFile
{
public:
    IniFile();
    IniFile(const IniFile& other);
    ~IniFile();

    /// Replaces everything by the contents of the file, in UTF-8; an absent file gives none. Throws
    /// HostException(FileError), and keeps what was there.
    void Load(const std::string& path);
    /// True when there is a file other than the one that was loaded or saved.
    bool IsOutdated() const;
    /// Writes the file that was loaded, in one step. Throws HostException(FileError). To keep what others saved, hold
    /// its WholeFile::Lock and load it again first if it is outdated.
    void Save();
    const std::string& GetPath() const noexcept { return path; }

    bool TryGet(const WString& section, const WString& key, WString& value) const;
    /// False for a line break, or for characters in a name that mean something else there: the file could not keep
    /// them.
    static bool CanHold(const WString& section, const WString& key, const WString& value);
    /// Sets a value that the file can hold.
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
