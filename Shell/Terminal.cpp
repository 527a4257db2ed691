#include "Terminal.h"

#include "Services/Abort.h"
#include "Text/WString.h"
#include "WaitForInput.h"

#include <clocale>
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
    EditLine* line;
    HistoryW* history;
    std::string historyFile;
};

Terminal::Terminal(const std::string& historyFile)
{
    constexpr int historyLength = 1000;
    std::setlocale(LC_CTYPE, ""); // libedit shows and measures characters as the terminal has them
    editor.reset(new Editor{el_init("labsh", stdin, stdout, stderr), history_winit(), historyFile});
    HistEventW event;
    history_w(editor->history, &event, H_SETSIZE, historyLength);
    history_w(editor->history, &event, H_SETUNIQUE, 1);
    history_w(editor->history, &event, H_LOAD, historyFile.c_str());
    el_wset(editor->line, EL_PROMPT, GetPrompt);
    el_wset(editor->line, EL_EDITOR, L"emacs");
    el_wset(editor->line, EL_HIST, history_w, editor->history);
    el_wset(editor->line, EL_GETCFN, ReadCharacter);
}

Terminal::~Terminal()
{
    HistEventW event;
    history_w(editor->history, &event, H_SAVE, editor->historyFile.c_str());
    history_wend(editor->history);
    el_end(editor->line);
}

bool Terminal::TryReadLine(std::string& line)
{
    std::fflush(stdout);
    for (;;) {
        Abort::Clear();
        el_wset(editor->line, EL_PREP_TERM, 1); // before the prompt, which a program may answer at once
        int count = 0;
        const wchar_t* text = el_wgets(editor->line, &count);
        if (!text && !Abort::IsRequested()) {
            std::puts(""); // the next prompt is another shell's
            return false;
        }
        if (!text || Abort::IsRequested()) {
            std::puts("^C");
            continue;
        }
        WString typed(text, static_cast<std::size_t>(count));
        if (typed.EndsWith(L"\n", false))
            typed = typed.Left(static_cast<unsigned int>(count - 1));
        HistEventW event;
        if (!typed.Trim().IsEmpty())
            history_w(editor->history, &event, H_ENTER, typed.ToCString());
        line = typed.ToUtf8();
        return true;
    }
}
