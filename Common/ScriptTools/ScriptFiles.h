#pragma once

#include "CommandText.h"
#include "KnownNames.h"

#include <map>
#include <set>
#include <string>
#include <vector>

/// The scripts that a script runs, read once each, as far as they concern the script that runs them.
class ScriptFiles
{
public:
    enum class Recursion
    {
        None,
        Possible, // by a command that depends on a condition, or stands behind one that may fail
        Certain
    };

    /// `path` is that of the script that is checked; may be empty.
    explicit ScriptFiles(const std::string& path);

    /// Where a run finds the script of that name.
    static std::string Find(const WString& name, const std::string& callerPath);
    /// The message of the failure to open it; empty when it can be read.
    WString GetFault(const std::string& file);
    /// Adds what the script, and those that it runs, set or make, unless it has been added before.
    void AddNames(const std::string& file, KnownNames& names);
    /// Whether the script runs itself or the one that is checked, or one that does.
    Recursion FindRecursion(const std::string& file);

private:
    struct Script
    {
        struct Run
        {
            std::string file;
            bool isConditional;
        };

        KnownNames names{Environment()};
        std::vector<Run> runs{};
        WString fault{};
    };

    std::map<std::string, std::string> keys; // full paths, by names
    std::string ownKey;                      // empty without a file
    std::map<std::string, Script> scripts;   // by their full paths
    std::map<std::string, Recursion> recursions;
    std::set<std::string> added; // whose names have been added

    Script& Read(const std::string& file);
    static void AddCommand(std::wstring_view line, const CommandText& command, bool isConditional,
        const std::string& file, Script& script);
    const std::string& GetKey(const std::string& file);
    Recursion FindRecursion(const std::string& file, std::set<std::string>& callers, std::set<std::string>& done);
};

/// The file that the command runs, as it is named; empty when it runs none, or that depends on a value.
WString GetRunFile(std::wstring_view line, const CommandText& command);
/// Whether it runs a script.
bool IsRun(const CommandText& command);
