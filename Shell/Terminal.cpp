#include "Terminal.h"

#include "Commands/StandardOutput.h"
#include "Signals.h"
#include "Text/Abort.h"
#include "Text/HostError.h"
#include "Text/WString.h"
#include "WaitForInput.h"

#include <cerrno>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cwchar>
#include <fcntl.h>
#include <histedit.h>
#include <langinfo.h>
#include <string_view>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace {
cc_t interruptKey_lc = _POSIX_VDISABLE; // where it is a key of the editor

/// Reads a character of the terminal for libedit. Unlike libedit's own routine it gives up at Ctrl-C.
int ReadCharacter(EditLine*, wchar_t* character)
{
    std::mbstate_t state{};
    std::size_t length = 0;
    do {
        char byte = 0;
        if (!WaitForInput(STDIN_FILENO))
            return -1;
        if (read(STDIN_FILENO, &byte, 1) != 1)
            return 0;
        if (interruptKey_lc != _POSIX_VDISABLE && byte == static_cast<char>(interruptKey_lc)) {
            raise(SIGINT);
            return -1;
        }
        length = std::mbrtowc(character, &byte, 1, &state);
    } while (length == static_cast<std::size_t>(-2)); // the character goes on
    if (length == static_cast<std::size_t>(-1))
        *character = L'\uFFFD';
    return 1;
}

/// libedit shows and measures characters as the terminal has them: in UTF-8, unless the environment names another
/// encoding.
void UseCharactersOfTerminal()
{
    if (!std::setlocale(LC_CTYPE, "") || nl_langinfo(CODESET) == std::string_view("ANSI_X3.4-1968"))
        std::setlocale(LC_CTYPE, "C.UTF-8");
}

/// A stream to the terminal that lines are typed at; standard output may lead elsewhere.
FILE* OpenTerminal()
{
    const bool isWritable = (fcntl(STDIN_FILENO, F_GETFL) & O_ACCMODE) == O_RDWR;
    const int terminal =
        isWritable ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0) : open("/proc/self/fd/0", O_WRONLY | O_CLOEXEC | O_NOCTTY);
    FILE* const stream = terminal < 0 ? nullptr : fdopen(terminal, "w");
    if (!stream)
        throw HostException(HostError::FileError,
            WString::FromUtf8("the terminal cannot be used: " + std::generic_category().message(errno)));
    return stream;
}

/// While a line is typed the terminal sends no signals, of which an interrupt would end those too that the output goes
/// to, such as tee: the editor knows its key.
void TakeInterruptKey(EditLine* line)
{
    termios settings = {};
    if (tcgetattr(STDIN_FILENO, &settings) == 0 && el_wset(line, EL_SETTY, L"-d", L"-isig", nullptr) == 0)
        interruptKey_lc = settings.c_cc[VINTR];
}

const wchar_t* GetPrompt(EditLine*)
{
    static wchar_t prompt[] = L"labsh> ";
    return prompt;
}
} // namespace

struct Terminal::Editor
{
    explicit Editor(const std::string& historyFile) : historyFile(historyFile) {}

    const std::unique_ptr<FILE, decltype(&std::fclose)> terminal{OpenTerminal(), std::fclose};
    const std::unique_ptr<EditLine, decltype(&el_end)> line{el_init("labsh", stdin, terminal.get(), stderr), el_end};
    const std::unique_ptr<HistoryW, decltype(&history_wend)> history{history_winit(), history_wend};
    const std::string historyFile;
};

Terminal::Terminal(const std::string& historyFile)
{
    constexpr int historyLength = 1000;
    UseCharactersOfTerminal();
    editor = std::make_unique<Editor>(historyFile);
    EditLine* const line = editor->line.get();
    HistoryW* const history = editor->history.get();
    if (!line || !history)
        throw HostException(HostError::FileError, L"the terminal cannot be used");
    HistEventW event;
    history_w(history, &event, H_SETSIZE, historyLength);
    history_w(history, &event, H_SETUNIQUE, 1);
    history_w(history, &event, H_LOAD, historyFile.c_str());
    el_wset(line, EL_PROMPT, GetPrompt);
    el_wset(line, EL_EDITOR, L"emacs");
    el_wset(line, EL_HIST, history_w, history);
    el_wset(line, EL_GETCFN, ReadCharacter);
    if (!isatty(STDOUT_FILENO))
        TakeInterruptKey(line);
}

Terminal::~Terminal()
{
    HistEventW event;
    history_w(editor->history.get(), &event, H_SAVE, editor->historyFile.c_str());
}

bool Terminal::TryReadLine(std::string& line)
{
    FILE* const terminal = editor->terminal.get();
    for (;;) {
        Abort::Clear();
        Signals::ForgetInterrupt();
        if (Signals::GetPending() != 0 || StandardOutput::Get().GetFault() != 0)
            return false;
        el_wset(editor->line.get(), EL_PREP_TERM, 1); // before the prompt, which a program may answer at once
        int count = 0;
        const wchar_t* text = el_wgets(editor->line.get(), &count);
        if (!text && !Abort::IsRequested()) {
            std::fputs("\n", terminal); // the next prompt is another shell's
            return false;
        }
        if (!text || Abort::IsRequested()) {
            std::fputs(Signals::GetPending() == SIGINT ? "^C\n" : "\n", terminal);
            continue;
        }
        WString typed(text, static_cast<std::size_t>(count));
        if (typed.EndsWith(L"\n", false))
            typed = typed.Left(static_cast<unsigned int>(count - 1));
        HistEventW event;
        if (!typed.Trim().IsEmpty())
            history_w(editor->history.get(), &event, H_ENTER, typed.ToCString());
        line = typed.ToUtf8();
        if (!isatty(STDOUT_FILENO)) { // a record of the session, which shows what the output belongs to
            StandardOutput::Get().DoWriteLine(typed);
            StandardOutput::Get().Flush();
        }
        return true;
    }
}
