#pragma once

#include <string>

/// The journal beside the counters' file, as SQLite lays it out: a head, and behind it frames of a page each, which
/// carry the head's salt and a checksum over all before them; the last frame of a change says so. SQLite reads up to
/// the first frame that is not right and takes that for the end, since a process that is killed leaves a change
/// unfinished. So damage in the midst would lose all behind it in silence.
namespace UsageJournal {
/// False when changes stand behind damage in the journal, or when there is a journal but its file has been emptied. May
/// be called while others write. Throws HostException(FileError) for a journal that is no regular file.
bool IsSound(const std::string& database);
} // namespace UsageJournal
