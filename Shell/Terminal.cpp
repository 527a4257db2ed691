#include "Terminal.h"

#include "Commands/StandardOutput.h"
#include "Signals.h"
#include "Text/Abort.h"
#include "Text/HostError.h"
#include "Text/WString.h"
#include "WaitForInput.h"

#include <clocale>
#include <cstdio>
#include <cwchar>
#include <histedit.h>
#include <unistd.h>

namespace {
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
        length = std::mbrtowc(character, &byte, 1, &state);
    } while (length == static_cast<std::size_t>(-2)); // the character goes on
    if (length == static_cast<std::size_t>(-1))
        *character = L'\uFFFD';
    return 1;
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

    const std::unique_ptr<EditLine, decltype(&el_end)> line{el_init("labsh", stdin, stdout, stderr), el_end};
    const std::unique_ptr<HistoryW, decltype(&history_wend)> history{history_winit(), history_wend};
    const std::string historyFile;
};

Terminal::Terminal(const std::string& historyFile)
{
    constexpr int historyLength = 1000;
    std::setlocale(LC_CTYPE, ""); // libedit shows and measures characters as the terminal has them
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
}

Terminal::~Terminal()
{
    HistEventW event;
    history_w(editor->history.get(), &event, H_SAVE, editor->historyFile.c_str());
}

bool Terminal::TryReadLine(std::string& line)
{
    std::fflush(stdout);
    for (;;) {
        Abort::Clear();
        Signals::ForgetInterrupt();
        if (Signals::GetPending() != 0 || StandardOutput::Get().GetFault() != 0)
            return false;
        el_wset(editor->line.get(), EL_PREP_TERM, 1); // before the prompt, which a program may answer at once
        int count = 0;
        const wchar_t* text = el_wgets(editor->line.get(), &count);
        if (!text && !Abort::IsRequested()) {
            std::puts(""); // the next prompt is another shell's
            return false;
        }
        if (!text || Abort::IsRequested()) {
            std::puts(Signals::GetPending() == SIGINT ? "^C" : "");
            continue;
        }
        WString typed(text, static_cast<std::size_t>(count));
        if (typed.EndsWith(L"\n", false))
            typed = typed.Left(static_cast<unsigned int>(count - 1));
        HistEventW event;
        if (!typed.Trim().IsEmpty())
            history_w(editor->history.get(), &event, H_ENTER, typed.ToCString());
        line = typed.ToUtf8();
        return true;
    }
}
