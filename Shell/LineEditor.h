#pragma once

#include "Instrument/Environment.h"
#include "Text/WString.h"
#include "Window.h"

#include <cstdio>
#include <memory>
#include <optional>

#include <histedit.h>
#include <termios.h>
#include <unistd.h>

/// A line of the terminal that is being edited, and the former lines that its keys bring back.
class LineEditor
{
public:
    /// Throws HostException(FileError) when standard input is no terminal that can be written to.
    explicit LineEditor(const Environment& environment);
    LineEditor(const LineEditor&) = delete;
    LineEditor& operator=(const LineEditor&) = delete;

    /// Asks for a line, which goes on behind `begun` if that is not empty. Null at the end of the input, and when an
    /// abort is requested.
    const wchar_t* Read(const WString& begun, int& count);
    void AddToHistory(const WString& command);
    FILE* GetTerminal() const noexcept { return terminal.get(); }

private:
    const std::unique_ptr<FILE, decltype(&std::fclose)> terminal;
    const std::unique_ptr<EditLine, decltype(&el_end)> line;
    const std::unique_ptr<HistoryW, decltype(&history_wend)> history;
    const Environment environment;
    Window window;
    cc_t interruptKey = _POSIX_VDISABLE; // where it is a key of the editor
    WString begun;
    std::optional<char> unread; // read already, for the next character
    WString left;               // the line that the search among the former ones began at
    WString typed;              // the part of it that they are to begin with
    WString brought;            // the former line that was found

    static LineEditor& Get(EditLine* line);
    static wchar_t* GetPrompt(EditLine* line);
    static int ReadCharacter(EditLine* line, wchar_t* character);
    template <auto action>
    static unsigned char Do(EditLine* line, wint_t) noexcept;

    int ReadByte(char& byte);

    unsigned char Complete();
    unsigned char BringOlder();
    unsigned char BringNewer();
    bool IsBrought() const;
    void BeginSearch();
    bool TryBring(int direction);
    void Replace(const WString& text);
    std::size_t CountRowsAbove(const Window& present) const;
    void TakeWindow();
    void TakeInterruptKey();
};
