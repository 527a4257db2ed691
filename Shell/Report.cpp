#include "Report.h"

#include <cstdio>

/// One line for the terminal: without control characters, and cut where it would fill the screen.
static WString AsOneLine(const WString& text)
{
    constexpr std::size_t maxLength = 500;
    WString line;
    for (const wchar_t ch : text.Left(maxLength))
        line += ch < L' ' || ch == 0x7F ? L' ' : ch;
    if (text.Length() > maxLength)
        line += L" ...";
    return line;
}

void Report(const WString& place, const ExitCode& code, const WString& message)
{
    const WString line = place + code.ToString() + (message.IsEmpty() ? L"" : L" ") + AsOneLine(message);
    std::fflush(stdout); // the report stands behind what the command wrote
    std::fprintf(stderr, "%s\n", line.ToUtf8().c_str());
}
