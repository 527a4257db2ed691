#pragma once

#include "Text/WString.h"

#include <functional>
#include <string>

#include <sys/types.h>

/// The lines that were typed, kept in a file that shells share. Each is appended under a lock when it has been typed,
/// and nothing in the file is changed, so that no shell, however it ends, takes a line from another.
class HistoryFile
{
public:
    using Taker = std::function<void(const WString& line)>;

    /// An empty name keeps nothing.
    explicit HistoryFile(const std::string& file) : file(file) {}

    /// Hands over the lines that came into the file since the last time, by whomever; the first time the last ones of
    /// it.
    void TakeNew(const Taker& take);
    /// Appends a line, behind those of others, which are handed over first. Says once when that fails.
    void Add(const WString& line, const Taker& take);

private:
    const std::string file;
    off_t position = -1; // behind what was read; negative before that
    bool hasFailed = false;

    void Read(int descriptor, const Taker& take);
    void Append(int descriptor, const std::string& bytes);
    void Fail(int error);
};
