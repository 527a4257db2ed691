#include "SessionLog.h"

#include "LocalTime.h"
#include "StatusLine.h"
#include "Text/HostError.h"

#include <cerrno>
#include <fcntl.h>
#include <string_view>
#include <system_error>

static HostException MakeFailure(const std::string& name, int error)
{
    return HostException(HostError::FileError, WString::FromUtf8(name + ": " + std::generic_category().message(error)));
}

SessionLog::SessionLog(const std::string& file)
    : name(file), file(open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, 0666))
{
    if (!this->file.IsOpen())
        throw MakeFailure(name, errno);
    current = this;
}

void SessionLog::Record(wchar_t mark, const WString& line)
{
    Write((FormatDateAndTime() + L" " + WString(1, mark) + L" " + line).ToUtf8() + "\n");
}

void SessionLog::Check() const
{
    if (fault != 0)
        throw MakeFailure(name, fault);
}

void SessionLog::Write(const std::string& text)
{
    for (std::string_view rest = text; !rest.empty() && fault == 0;) {
        const ssize_t written = write(file.Get(), rest.data(), rest.size());
        if (written >= 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            fault = errno;
    }
}

bool RecordedLines::TryReadLine(std::string& line)
{
    if (!source.TryReadLine(line))
        return false;
    if (SessionLog* const log = SessionLog::GetOrNull())
        log->Record(L'>', WString::FromUtf8(line));
    return true;
}

void RecordedOutput::DoWriteLine(const WString& line)
{
    if (SessionLog* const log = SessionLog::GetOrNull())
        log->Record(L' ', line);
    StatusLine::Erase();
    output.DoWriteLine(line);
}
