#pragma once

#include "HostApi.h"
#include "Instrument/ConfigFileData.h"
#include "Instrument/StatusTable.h"
#include "Instrument/UsageLog.h"
#include "Services/LogFile.h"
#include "Services/Rand.h"

#include <string>

/// The instrument: its data and services, made when libHost is loaded and filled by Start.
class HOST_API System
{
public:
    static ConfigFileData config;
    static StatusTable status;
    static UsageLog usage;
    static LogFile errorLog; // "ErrorLog", enabled unless `[Log] ErrorLog=false`
    static Rand random;

    /// Opens the data folder with its files Config.ini, Status.ini and Usage.db. The folder is made when it is missing,
    /// and so are the files, the first two as copies from `profileFolder`. Registers the live status items InfoDate,
    /// InfoTime and UpTime (seconds since now), seeds `random` from `[Random] Seed` when that is set, and configures
    /// the logs. Called before other threads use any of these.
    ///
    /// No file stops it: one that is damaged, or cannot be made, read or written, is worked around. Yields a line for
    /// each of these, for the user: the file, what is wrong and what follows from that.
    static WStringArray Start(const std::string& dataFolder, const std::string& profileFolder);
    /// False when the data are another user's who lets this process read alone. It makes no files beside them then.
    static bool MayChange() noexcept;
    /// The absolute path of the folder given to Start; empty before. Safe under threads once Start has returned.
    static const std::string& GetDataFolder() noexcept;

    /// ProcessTable::FindMatching, the form that plug-ins know.
    static int GetMatchingProcess(const wchar_t* command, const wchar_t* commandLine);
};
