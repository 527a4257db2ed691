#include "LineEditor.h"

#include "CandidateList.h"
#include "Screen.h"
#include "Signals.h"
#include "Text/HostError.h"
#include "WaitForInput.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <csignal>
#include <cwchar>
#include <fcntl.h>
#include <langinfo.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {
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
} // namespace

LineEditor::LineEditor(const Environment& environment)
    : terminal((UseCharactersOfTerminal(), OpenTerminal()), std::fclose),
      line(el_init("labsh", stdin, terminal.get(), stderr), el_end),
      history(history_winit(), history_wend),
      environment(environment),
      window(STDIN_FILENO)
{
    constexpr int historyLength = 1000;
    if (!line || !history)
        throw HostException(HostError::FileError, L"the terminal cannot be used");
    HistEventW event;
    history_w(history.get(), &event, H_SETSIZE, historyLength);
    history_w(history.get(), &event, H_SETUNIQUE, 1);
    el_wset(line.get(), EL_CLIENTDATA, this);
    el_wset(line.get(), EL_PROMPT, GetPrompt);
    el_wset(line.get(), EL_EDITOR, L"emacs");
    el_wset(line.get(), EL_HIST, history_w, history.get());
    el_wset(line.get(), EL_GETCFN, ReadCharacter);
    if (!isatty(STDOUT_FILENO))
        TakeInterruptKey();
    Signals::WakeAtWindowChanges();

    static constexpr struct
    {
        const wchar_t* name;
        unsigned char (*action)(EditLine*, wint_t) noexcept;
        const wchar_t* keys[3];
    } bindings[] = {
        {L"complete", Do<&LineEditor::Complete>, {L"^I"}},
        {L"bring-older", Do<&LineEditor::BringOlder>, {L"\x1b[A", L"\x1bOA", L"^P"}},
        {L"bring-newer", Do<&LineEditor::BringNewer>, {L"\x1b[B", L"\x1bOB", L"^N"}},
    };
    for (const auto& [name, action, keys] : bindings) {
        el_wset(line.get(), EL_ADDFN, name, name, action);
        for (const wchar_t* key : keys)
            if (key)
                el_wset(line.get(), EL_BIND, key, name, nullptr);
    }
    el_wset(line.get(), EL_BIND, L"^R", L"em-inc-search-prev", nullptr);
}

/// While a line is typed the terminal sends no signals, of which an interrupt would end those too that the output goes
/// to, such as tee: the editor knows its key.
void LineEditor::TakeInterruptKey()
{
    termios settings = {};
    if (tcgetattr(STDIN_FILENO, &settings) == 0 && el_wset(line.get(), EL_SETTY, L"-d", L"-isig", nullptr) == 0)
        interruptKey = settings.c_cc[VINTR];
}

const wchar_t* LineEditor::Read(const WString& begunBefore, int& count)
{
    begun = begunBefore;
    brought.Clear();
    el_wset(line.get(), EL_PREP_TERM, 1); // before the prompt, which a program may answer at once
    return el_wgets(line.get(), &count);
}

void LineEditor::AddToHistory(const WString& command)
{
    HistEventW event;
    history_w(history.get(), &event, H_ENTER, command.ToCString());
}

LineEditor& LineEditor::Get(EditLine* line)
{
    void* editor = nullptr;
    el_wget(line, EL_CLIENTDATA, &editor);
    return *static_cast<LineEditor*>(editor);
}

wchar_t* LineEditor::GetPrompt(EditLine* line)
{
    static wchar_t prompt[] = L"labsh> ";
    static wchar_t continuation[] = L"  ...> ";
    return Get(line).begun.IsEmpty() ? prompt : continuation;
}

/// Reads a character of the terminal for libedit. Unlike libedit's own routine it gives up at Ctrl-C.
int LineEditor::ReadCharacter(EditLine* line, wchar_t* character)
{
    LineEditor& editor = Get(line);
    std::mbstate_t state{};
    for (bool isFirst = true;; isFirst = false) {
        char byte = 0;
        if (const int result = editor.ReadByte(byte); result != 1)
            return result;
        const std::size_t length = std::mbrtowc(character, &byte, 1, &state);
        if (length == static_cast<std::size_t>(-2)) // the character goes on
            continue;
        if (length == static_cast<std::size_t>(-1)) {
            *character = L'\uFFFD';
            if (!isFirst)
                editor.unread = byte; // which begins another one
        }
        return 1;
    }
}

/// 1, or as for libedit 0 at the end of the input and -1 at an abort.
int LineEditor::ReadByte(char& byte)
{
    if (unread) {
        byte = *std::exchange(unread, std::nullopt);
        return 1;
    }
    while (WaitForInput(STDIN_FILENO, [this] { TakeWindow(); })) {
        if (read(STDIN_FILENO, &byte, 1) != 1)
            return 0;
        if (interruptKey == _POSIX_VDISABLE || byte != static_cast<char>(interruptKey))
            return 1;
        raise(SIGINT); // an abort, unless the shell was started to ignore it
    }
    return -1;
}

/// How many rows of the line stand above that of the cursor. Some terminals wrap a line anew when their window changes,
/// others leave it: what is wiped must not be more than the line.
std::size_t LineEditor::CountRowsAbove(const Window& present) const
{
    const LineInfoW* const info = el_wline(line.get());
    const std::wstring_view before(info->buffer, static_cast<std::size_t>(info->cursor - info->buffer));
    const std::size_t cells = CountCells(GetPrompt(line.get())) + CountCells(before);
    return cells / std::max(window.columns, present.columns);
}

/// A window that has changed its size is drawn anew.
void LineEditor::TakeWindow()
{
    if (const Window present(STDIN_FILENO); present != window) {
        const std::size_t rowsAbove = CountRowsAbove(present);
        window = present;
        el_resize(line.get());
        if (!Screen::CanDrawOver(fileno(terminal.get())))
            return;
        if (rowsAbove > 0)
            std::fprintf(terminal.get(), "\x1b[%zuA", rowsAbove);
        std::fputs("\r\x1b[J", terminal.get());
        el_wset(line.get(), EL_REFRESH);
        std::fflush(terminal.get());
    }
}

/// The action of a key; one that fails does nothing, for nothing may be thrown through libedit.
template <auto action>
unsigned char LineEditor::Do(EditLine* line, wint_t) noexcept
try {
    return (Get(line).*action)();
} catch (...) {
    return CC_ERROR;
}

/// Puts in what all candidates begin with. Lists them when that adds nothing, and describes one that stands alone.
unsigned char LineEditor::Complete()
{
    const ScriptAssistant* const assistant = ScriptAssistant::GetOrNull();
    if (!assistant)
        return CC_ERROR;
    const LineInfoW* const info = el_wline(line.get());
    const auto lengthTo = [&](const wchar_t* end) { return static_cast<std::size_t>(end - info->buffer); };
    const WString text = begun + WString(std::wstring_view(info->buffer, lengthTo(info->lastchar)));
    const std::size_t cursor = begun.Length() + lengthTo(info->cursor);
    const auto [start, candidates] = assistant->Complete(text.View(), cursor, environment);
    if (candidates.empty() || start < begun.Length())
        return CC_ERROR;

    const std::wstring_view piece = text.View().substr(start, cursor - start);
    const WString common = GetCommonBeginning(candidates);
    const bool isAlone = candidates.size() == 1;
    const bool adds =
        isAlone ? common.View() != piece : common.Length() > piece.size() && common.StartsWith(WString(piece), true);
    if (adds) {
        el_wdeletestr(line.get(), static_cast<int>(piece.size()));
        el_winsertstr(line.get(), common.ToCString());
    }
    const bool saysMore = candidates[0].label.Length() > common.Length() || !candidates[0].meaning.IsEmpty();
    if (adds && !(isAlone && saysMore))
        return CC_REFRESH;
    std::fputs(("\n" + LayOut(candidates, window, fileno(terminal.get()))).c_str(), terminal.get());
    return CC_REDISPLAY;
}

unsigned char LineEditor::BringOlder()
{
    BeginSearch();
    return TryBring(H_NEXT) ? CC_REFRESH : CC_ERROR;
}

/// Behind the newest line comes the one that was left, with the cursor at its place.
unsigned char LineEditor::BringNewer()
{
    if (!IsBrought())
        return CC_ERROR;
    if (!TryBring(H_PREV)) {
        Replace(left);
        el_cursor(line.get(), static_cast<int>(typed.Length()) - static_cast<int>(left.Length()));
        brought.Clear();
    }
    return CC_REFRESH;
}

static std::wstring_view GetText(const LineInfoW& info)
{
    return {info.buffer, static_cast<std::size_t>(info.lastchar - info.buffer)};
}

/// Whether the line is still the one that the last search has brought.
bool LineEditor::IsBrought() const
{
    return !brought.IsEmpty() && brought.View() == GetText(*el_wline(line.get()));
}

/// Begins a search for the text in front of the cursor, unless one is under way.
void LineEditor::BeginSearch()
{
    if (IsBrought())
        return;
    const LineInfoW* const info = el_wline(line.get());
    brought.Clear();
    left = WString(GetText(*info));
    typed = left.Left(static_cast<unsigned int>(info->cursor - info->buffer));
}

/// Goes on from the line that was brought, or begins at the newest.
bool LineEditor::TryBring(int direction)
{
    HistEventW event;
    int result = history_w(history.get(), &event, brought.IsEmpty() ? H_FIRST : direction);
    for (; result != -1; result = history_w(history.get(), &event, direction)) {
        const WString former = event.str;
        if (former != brought && former.StartsWith(typed, false)) {
            brought = former;
            Replace(former);
            return true;
        }
    }
    return false;
}

void LineEditor::Replace(const WString& text)
{
    const LineInfoW* const info = el_wline(line.get());
    const auto length = static_cast<int>(info->lastchar - info->buffer);
    el_cursor(line.get(), static_cast<int>(info->lastchar - info->cursor));
    el_wdeletestr(line.get(), length);
    el_winsertstr(line.get(), text.ToCString());
}
