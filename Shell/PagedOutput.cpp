#include "PagedOutput.h"

#include "Commands/RunObserver.h"
#include "Screen.h"
#include "Services/FileDescriptor.h"
#include "Signals.h"
#include "Text/CharacterCase.h"
#include "Window.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <new>
#include <spawn.h>
#include <string>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
constexpr const wchar_t* listingCommands_lc[] = {
    L"Calc", L"Config", L"Event", L"Help", L"Log", L"Plugins", L"Set", L"Status", L"Usage"};

bool IsListing(const CommandRun* run)
{
    return run && !run->caller &&
        std::ranges::any_of(listingCommands_lc, [&](const wchar_t* name) { return run->outcome.command == name; });
}

bool HasRoom(const WStringArray& lines, const Window& window)
{
    std::size_t rows = 1; // of the next prompt
    for (const WString& line : lines)
        rows += std::max<std::size_t>((CountCells(line.View()) + window.columns - 1) / window.columns, 1);
    return rows <= window.rows;
}

/// A line for the system's shell, which is to become the pager, not to wait for it: then a signal reaches it.
std::string GetPager()
{
    const char* const pager = std::getenv("PAGER");
    if (!pager)
        return "command -v less >/dev/null || exit 127; exec less -FRX"; // one that is missing does so in silence
    const std::string text = pager;
    const bool isPlain = !text.empty() && text.find_first_of("=;&|<>(){}$`\\\"'\n") == text.npos;
    const bool isBuiltIn = text.starts_with("exec ") || text.starts_with("command ");
    return isPlain && !isBuiltIn ? "exec " + text : text;
}

/// A file in memory that holds the text, and is read from its start.
FileDescriptor MakeInput(const std::string& text)
{
    const int file = memfd_create("output", MFD_CLOEXEC);
    if (file >= 0) [[maybe_unused]]
        const ssize_t written = pwrite(file, text.data(), text.size(), 0);
    return FileDescriptor(file);
}

/// Waits until the child ends; a signal that is to end the shell ends the child first.
int WaitFor(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
        if (const int signal = Signals::GetPending(); signal != 0 && signal != SIGINT)
            kill(child, SIGTERM);
    }
    return status;
}

/// False when there is no pager that can be run. Ctrl-C is the pager's meanwhile.
bool TryPage(const WStringArray& lines)
{
    std::string text;
    for (const WString& line : lines)
        text += line.ToUtf8() + '\n';
    const FileDescriptor input = MakeInput(text);
    std::string pager = GetPager();
    if (pager.empty() || !input.IsOpen())
        return false;
    char shell[] = "sh";
    char option[] = "-c";
    char* const arguments[] = {shell, option, pager.data(), nullptr};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.Get(), STDIN_FILENO);
    pid_t child = 0;
    const int error = posix_spawn(&child, "/bin/sh", &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return false;
    const int status = WaitFor(child);
    return !WIFEXITED(status) || WEXITSTATUS(status) < 126; // else the shell found no such program
}
} // namespace

void PagedOutput::DoWriteLine(const WString& line)
{
    static const bool isAtTerminal = isatty(STDIN_FILENO) == 1 && Screen::CanDrawOver(STDOUT_FILENO);
    if (isAtTerminal && IsListing(CommandRunner::GetRunning()))
        held.Add(line);
    else
        output.DoWriteLine(line);
}

void PagedOutput::Flush() noexcept
try {
    WriteHeld();
    output.Flush();
} catch (const std::bad_alloc&) {
    held.Clear();
}

void PagedOutput::WriteHeld()
{
    if (!HasRoom(held, Window(STDOUT_FILENO)) && TryPage(held)) {
        held.Clear();
        return;
    }
    for (const WString& line : held)
        output.DoWriteLine(line);
    held.Clear();
}
