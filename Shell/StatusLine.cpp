#include "StatusLine.h"

#include "Commands/CommandLine.h"
#include "Commands/Reference.h"
#include "FileLines.h"
#include "RunningScript.h"
#include "Text/Abort.h"
#include "Text/ReferenceText.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <utility>

#include <unistd.h>

namespace {
constexpr unsigned int patience = 1000;     // milliseconds before the line is shown
constexpr unsigned int drawInterval = 200;  // milliseconds at least
constexpr unsigned int shortestWait = 1000; // milliseconds, of those whose remainder is shown

/// A line that was typed, at the prompt or for labsh, and not one of a script.
bool IsTyped(const CommandRun& run)
{
    const RunningScript* const script = RunningScript::GetInnermost();
    return !run.caller && script && script->name.IsEmpty();
}

/// "0:14" or "1:00:05", of a time in milliseconds.
WString FormatDuration(unsigned int milliseconds)
{
    const unsigned int seconds = milliseconds / 1000 + (milliseconds % 1000 != 0);
    const unsigned int hours = seconds / 3600;
    return hours == 0 ? WString::Format(L"%u:%02u", seconds / 60, seconds % 60)
                      : WString::Format(L"%u:%02u:%02u", hours, seconds / 60 % 60, seconds % 60);
}

/// What a loop says of the greatest number of its rounds; 0 when it says nothing.
int ReadMaxCount(const CommandRun& run)
{
    WString name;
    WString rest;
    CommandLine::SplitName(run.line, name, rest);
    ArgumentList arguments;
    Options options;
    CommandLine::Parse(rest, CommandFlags::restAsItStands, arguments, options);
    int count = 0;
    options.TryGetInt(L"c", 1, count, 0, std::numeric_limits<int>::max());
    return count;
}
} // namespace

bool StatusLine::CanBeShown()
{
    return Screen::CanDrawOver(STDERR_FILENO) && isatty(STDOUT_FILENO) == 1;
}

StatusLine::StatusLine() : line(STDERR_FILENO), begin(GetTickCount()), drawnAt(begin)
{
    current = this;
    Clock::Replace(&clock);
}

StatusLine::~StatusLine()
{
    Clock::Replace(nullptr);
    Erase();
    current = nullptr;
}

void StatusLine::Erase() noexcept
{
    if (current)
        current->line.Erase();
}

StatusLine::Pause::Pause() noexcept : paused(current)
{
    Erase();
    current = nullptr;
}

StatusLine::Pause::~Pause()
{
    current = paused;
}

void StatusLine::OnBegin(const CommandRun& run) noexcept
{
    if (IsTyped(run))
        begin = GetTickCount();
    DrawIfDue();
}

void StatusLine::OnCondition(const CommandRun& run, const WString& condition, bool, const WString&) noexcept
try {
    if (conditionals.empty() || conditionals.back().run != &run)
        conditionals.push_back({&run, condition, GetTickCount()});
    ++conditionals.back().count;
    DrawIfDue();
} catch (const std::bad_alloc&) { // the commands run all the same
}

void StatusLine::OnEnd(const CommandRun& run) noexcept
{
    if (!conditionals.empty() && conditionals.back().run == &run)
        conditionals.pop_back();
    if (IsTyped(run))
        Erase();
}

void StatusLine::WaitClock::Sleep(unsigned int milliseconds)
{
    const unsigned int start = GetTickCount();
    for (unsigned int waited = 0; waited < milliseconds && !Abort::IsRequested(); waited = GetTickCount() - start) {
        const unsigned int left = milliseconds - waited;
        line.DrawIfDue(milliseconds < shortestWait ? std::nullopt : std::optional(left));
        Clock::Sleep(std::min(left, drawInterval));
    }
}

void StatusLine::DrawIfDue(std::optional<unsigned int> left) noexcept
try {
    const unsigned int now = GetTickCount();
    if (current != this || now - begin < patience || now - drawnAt < drawInterval)
        return;
    line.Draw(Describe(left));
    drawnAt = now;
} catch (...) { // no memory, or an abort: the commands end as they would
}

WString StatusLine::Describe(std::optional<unsigned int> left)
{
    WString text;
    for (const WString& part : {DescribeScript(), DescribeCommand(), DescribeReference(), DescribeTimeLeft(left)}) {
        if (!part.IsEmpty())
            text.AppendWithSeparator(part, L"  ");
    }
    return text;
}

WString StatusLine::DescribeScript()
{
    const RunningScript* const script = RunningScript::GetInnermost();
    if (!script || script->name.IsEmpty())
        return WString();
    const std::wstring_view path = script->name.View();
    const unsigned int count = CountLines(script->name);
    return WString(path.substr(path.rfind(L'/') + 1)) + WString::Format(L" %u", script->line) +
        (count == 0 ? WString() : WString::Format(L"/%u", count));
}

const StatusLine::Conditional* StatusLine::FindLoop() const
{
    for (auto inner = conditionals.rbegin(); inner != conditionals.rend(); ++inner)
        if (inner->run->outcome.command == L"While")
            return &*inner;
    return nullptr;
}

/// The innermost loop, or the command where there is none.
WString StatusLine::DescribeCommand() const
{
    if (const Conditional* const loop = FindLoop()) {
        const int maxCount = ReadMaxCount(*loop->run);
        return WString::Format(L"While %u", loop->count) +
            (maxCount == 0 ? WString() : WString::Format(L" of %d", maxCount));
    }
    const CommandRun* const run = CommandRunner::GetRunning();
    return run ? run->outcome.command : WString();
}

/// A loop is expected to go on as fast as before.
WString StatusLine::DescribeTimeLeft(std::optional<unsigned int> wait) const
{
    const Conditional* const loop = FindLoop();
    const unsigned int maxCount = loop ? static_cast<unsigned int>(ReadMaxCount(*loop->run)) : 0;
    if (loop && loop->count > 1 && loop->count <= maxCount) {
        const double each = static_cast<double>(GetTickCount() - loop->begin) / (loop->count - 1);
        wait = static_cast<unsigned int>(std::min(each * (maxCount - loop->count + 1), 1e9));
    }
    return wait ? FormatDuration(*wait) + L" left" : WString();
}

/// The first reference of the innermost condition that has one, with its value now. Counters are left out: what the
/// shell counts would be written each time.
WString StatusLine::DescribeReference() const
{
    for (auto inner = conditionals.rbegin(); inner != conditionals.rend(); ++inner) {
        const std::wstring_view text = inner->condition.View();
        const ReferenceText::Reference found = ReferenceText::Find(text, L"SCE");
        if (found.fault != ReferenceText::Fault::None)
            continue;
        const WString reference(text.substr(found.start, found.end - found.start));
        if (Reference::Exists(reference, inner->run->environment))
            return WString(found.name) + L"=" + Reference::ReplaceAll(reference, inner->run->environment);
    }
    return WString();
}

/// 0 where that is not known, or not worth the time.
unsigned int StatusLine::CountLines(const WString& script)
{
    constexpr std::uintmax_t sizeLimit = 0x100000;
    const auto [entry, isNew] = lineCounts.try_emplace(script, 0u);
    const std::string path = script.ToUtf8();
    std::error_code error;
    if (isNew && std::filesystem::is_regular_file(path, error) && std::filesystem::file_size(path, error) < sizeLimit) {
        FileLines lines(path);
        for (std::string text; lines.TryReadLine(text);)
            ++entry->second;
    }
    return entry->second;
}
