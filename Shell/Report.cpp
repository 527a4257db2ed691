#include "Report.h"

#include "Commands/StandardOutput.h"
#include "Commands/StandardStream.h"
#include "Instrument/System.h"
#include "RunningScript.h"
#include "SessionLog.h"
#include "StatusLine.h"
#include "Window.h"

#include <algorithm>
#include <new>
#include <string_view>

#include <unistd.h>

/// A line that cannot be written is lost, and nobody could be told.
static constinit StandardStream errors_lc(STDERR_FILENO);

/// The message without what the command has shown at the terminal that the report goes to: "Failed: Calc 1/0" of
/// "Failed: Calc 1/0: Divide by zero", nothing of "Divide by zero".
static WString LeaveOutShown(const WString& message)
{
    if (isatty(STDERR_FILENO) != 1)
        return message;
    const std::wstring_view text = message.View();
    const std::size_t question = std::min(text.rfind(L" (did you mean "), text.size()); // which is never shown before
    for (std::size_t start = 0; start < question;) {
        if (StandardOutput::Get().HasShown(text.substr(start, question - start)))
            return WString(text.substr(0, start > 2 ? start - 2 : 0)) + WString(text.substr(question));
        const std::size_t colon = text.find(L": ", start);
        start = colon == text.npos ? question : colon + 2;
    }
    return message;
}

void WriteErrorLine(const WString& text, Colour colour)
{
    const WString line = WithoutControls(text);
    if (SessionLog* const log = SessionLog::GetOrNull())
        log->Record(L'!', line);
    StandardOutput::Get().Flush();
    StatusLine::Erase();
    errors_lc.Write(Paint(line.ToUtf8(), colour, STDERR_FILENO) + '\n');
}

void WriteReport(const WString& place, const ExitCode& code, const WString& message, Colour colour)
{
    const WString rest = LeaveOutShown(message).Trim();
    WriteErrorLine(place + code.ToString() + (rest.IsEmpty() ? L"" : L" ") + rest, colour);
}

void ForgetShown()
{
    StandardOutput::Get().ForgetShown();
}

void WriteNotes(const WString& place, const WStringArray& notes)
{
    for (const WString& note : notes)
        WriteErrorLine(place + L"note: " + note, Colour::Aside);
}

void ReportFailure(const WString& scriptName, const ScriptFailure& failure)
try {
    WriteReport(FormatFailurePlace(scriptName, failure), failure.outcome.code, failure.outcome.message);
    WriteNotes(FormatPlace(scriptName, failure.line), failure.outcome.notes);
} catch (const std::bad_alloc&) {
    ReportShortage();
}

void ReportFailure(const HostException& failure)
try {
    WriteReport(L"labsh: ", failure, failure.GetMessage());
} catch (const std::bad_alloc&) {
    ReportShortage();
}

void ReportCounters() noexcept
try {
    if (const WString report = System::usage.TakeReport(); !report.IsEmpty())
        WriteErrorLine(L"labsh: warning: " + report);
} catch (const std::bad_alloc&) {
    ReportShortage();
}

void ReportShortage() noexcept
{
    constexpr std::string_view line = "labsh: out of memory\n";
    StandardOutput::Get().Flush();
    StatusLine::Erase();
    errors_lc.Write(line);
}
