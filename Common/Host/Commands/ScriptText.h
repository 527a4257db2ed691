#pragma once

#include "Commands/LineSource.h"
#include "HostApi.h"

#include <string>
#include <string_view>

/// The lines of a text that is in memory. Line ends are LF or CR LF.
class HOST_API TextLines : public LineSource
{
public:
    /// The text must outlive this.
    explicit TextLines(std::string_view text) : rest(text) {}
    bool TryReadLine(std::string& line) override;

private:
    std::string_view rest;
};

/// The text of a script as UTF-8, from whatever encoding a run of it takes, without a byte order mark. Throws
/// HostException(FileError), with the name, where a run would.
HOST_API std::string DecodeScriptText(std::string bytes, const std::string& name);
/// The same of a whole file.
HOST_API std::string ReadScriptText(const std::string& path);
