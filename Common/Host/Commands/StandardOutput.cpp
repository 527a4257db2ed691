#include "Commands/StandardOutput.h"

#include "Text/Abort.h"

#include <algorithm>
#include <string>
#include <unistd.h>

StandardOutput::StandardOutput() : stream(STDOUT_FILENO), isTerminal(isatty(STDOUT_FILENO) == 1) {}

StandardOutput& StandardOutput::Get()
{
    static StandardOutput output;
    return output;
}

void StandardOutput::DoWriteLine(const WString& line)
{
    const std::string bytes = line.ToUtf8() + '\n';
    if (bytes.size() > block.size() - length)
        Flush();
    if (bytes.size() > block.size()) {
        Write(bytes);
        return;
    }
    std::ranges::copy(bytes, block.data() + length);
    length += bytes.size();
    if (isTerminal) {
        Flush();
        Remember(line);
    }
}

void StandardOutput::Remember(const WString& line)
{
    constexpr std::size_t fewLines = 50;
    if (shown.Count() == fewLines)
        shown.Clear();
    shown.Add(line.Trim());
}

bool StandardOutput::HasShown(std::wstring_view line) const
{
    return std::ranges::any_of(shown, [&](const WString& other) { return other.View() == line; });
}

void StandardOutput::Flush() noexcept
{
    Write({block.data(), length});
    length = 0;
}

void StandardOutput::Write(std::string_view bytes) noexcept
{
    if (fault != 0)
        return;
    fault = stream.Write(bytes);
    if (fault != 0)
        Abort::Request();
}
