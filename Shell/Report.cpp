#include "Report.h"

#include <cstdio>

/// One line for the terminal, without control characters.
static WString AsOneLine(const WString& text)
{
    WString line;
    for (const wchar_t ch : text)
        line += ch < L' ' || (ch >= 0x7F && ch < 0xA0) ? L' ' : ch;
    return line;
}

void Report(const WString& place, const ExitCode& code, const WString& message)
{
    const WString line = AsOneLine(place + code.ToString() + (message.IsEmpty() ? L"" : L" ") + message);
    std::fflush(stdout); // the report stands behind what the command wrote
    std::fprintf(stderr, "%s\n", line.ToUtf8().c_str());
}
