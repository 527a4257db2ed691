#include "Report.h"

#include <algorithm>
#include <cstdio>

void Report(const WString& place, const ExitCode& code, const WString& message)
{
    std::string line = (place + code.ToString() + (message.IsEmpty() ? L"" : L" ") + message).ToUtf8();
    std::ranges::replace(line, '\n', ' ');
    std::ranges::replace(line, '\r', ' ');
    std::fflush(stdout); // the report stands behind what the command wrote
    std::fprintf(stderr, "%s\n", line.c_str());
}
