#include "Report.h"

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

static void Write(const WString& place, const ExitCode& code, const WString& message)
{
    const WString line = AsOneLine(place + code.ToString() + (message.IsEmpty() ? L"" : L" ") + message);
    std::fflush(stdout); // the report stands behind what the command wrote
    std::fprintf(stderr, "%s\n", line.ToUtf8().c_str());
}

void ReportFailure(const WString& scriptName, const ScriptFailure& failure)
try {
    Write(FormatPlace(scriptName, failure), failure.outcome.code, failure.outcome.message);
} catch (const std::bad_alloc&) {
    ReportShortage();
}

void ReportFailure(const HostException& failure)
try {
    Write(L"labsh: ", failure, failure.GetMessage());
} catch (const std::bad_alloc&) {
    ReportShortage();
}

void ReportShortage() noexcept
{
    constexpr std::string_view line = "labsh: out of memory\n";
    std::fflush(stdout);
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.data(), line.size());
}
