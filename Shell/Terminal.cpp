#include "Terminal.h"

#include "Commands/CommandRunner.h"
#include "Commands/StandardOutput.h"
#include "HistoryFile.h"
#include "LineEditor.h"
#include "Signals.h"
#include "Text/Abort.h"

#include <csignal>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

struct Terminal::Editor
{
    LineEditor lines;
    HistoryFile history;
    const HistoryFile::Taker toLines = [this](const WString& command) { lines.AddToHistory(command); };
};

/// A final backslash goes on in the next line, unless the line is a comment, or too long for a command.
static bool IsContinued(const WString& command)
{
    return command.EndsWith(L"\\", false) && !command.Trim().StartsWith(L"#", false) &&
        command.Length() <= CommandRunner::maxLineLength;
}

/// Where output leads elsewhere it is a record of the session, which shows what the output belongs to.
static void Record(const WString& typed)
{
    if (isatty(STDOUT_FILENO))
        return;
    StandardOutput::Get().DoWriteLine(typed);
    StandardOutput::Get().Flush();
}

/// Where output goes to a pipe, its reader may show it on this terminal too, as tee does: what it has been given is to
/// be seen before the next prompt. A reader that is busy otherwise holds nobody up.
static void LetReaderShow()
{
    constexpr unsigned int millisecond = 1000; // for usleep
    struct stat output = {};
    if (fstat(STDOUT_FILENO, &output) != 0 || !S_ISFIFO(output.st_mode))
        return;
    int unread = 0;
    for (int tries = 20; tries > 0 && ioctl(STDOUT_FILENO, FIONREAD, &unread) == 0 && unread > 0; --tries)
        usleep(millisecond);
    usleep(2 * millisecond); // it has read; now it writes
}

Terminal::Terminal(const std::string& historyFile, const Environment& environment)
    : editor(new Editor{LineEditor(environment), HistoryFile(historyFile)})
{}

Terminal::~Terminal() = default;

bool Terminal::TryReadLine(std::string& line)
{
    FILE* const terminal = editor->lines.GetTerminal();
    for (WString command;;) {
        Abort::Clear();
        Signals::ForgetInterrupt();
        if (Signals::GetPending() != 0 || StandardOutput::Get().GetFault() != 0)
            return false;
        if (command.IsEmpty())
            editor->history.TakeNew(editor->toLines);
        LetReaderShow();
        int count = 0;
        const wchar_t* const text = editor->lines.Read(command, count);
        if (!text && !Abort::IsRequested()) {
            std::fputs("\n", terminal); // the next prompt is another shell's
            return false;
        }
        if (!text || Abort::IsRequested()) {
            std::fputs(Signals::GetPending() == SIGINT ? "^C\n" : "\n", terminal);
            command.Clear();
            continue;
        }
        std::wstring_view typed(text, static_cast<std::size_t>(count));
        if (typed.ends_with(L'\n'))
            typed.remove_suffix(1);
        Record(WString(typed));
        command += WString(typed);
        if (IsContinued(command)) {
            command = command.Left(static_cast<unsigned int>(command.Length() - 1));
            continue;
        }
        if (!command.Trim().IsEmpty())
            editor->history.Add(command, editor->toLines);
        line = command.ToUtf8();
        return true;
    }
}
