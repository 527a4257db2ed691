#include "Report.h"

#include "Commands/StandardOutput.h"
#include "SessionLog.h"

#include <cstdio>
#include <new>
#include <string_view>

#include <unistd.h>

/// One line for the terminal, without control characters.
static WString AsOneLine(const WString& text)
{
    WString line;
    for (const wchar_t ch : text)
        line += ch < L' ' || (ch >= 0x7F && ch < 0xA0) ? L' ' : ch;
    return line;
}

void WriteErrorLine(const WString& text)
{
    const WString line = AsOneLine(text);
    if (SessionLog* const log = SessionLog::GetOrNull())
        log->Record(L'!', line);
    StandardOutput::Get().Flush();
    std::fprintf(stderr, "%s\n", line.ToUtf8().c_str());
}

void WriteReport(const WString& place, const ExitCode& code, const WString& message)
{
    WriteErrorLine(place + code.ToString() + (message.IsEmpty() ? L"" : L" ") + message);
}

void ReportFailure(const WString& scriptName, const ScriptFailure& failure)
try {
    WriteReport(FormatFailurePlace(scriptName, failure), failure.outcome.code, failure.outcome.message);
} catch (const std::bad_alloc&) {
    ReportShortage();
}

void ReportFailure(const HostException& failure)
try {
    WriteReport(L"labsh: ", failure, failure.GetMessage());
} catch (const std::bad_alloc&) {
    ReportShortage();
}

void ReportShortage() noexcept
{
    constexpr std::string_view line = "labsh: out of memory\n";
    StandardOutput::Get().Flush();
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}
