#pragma once

#include "Support/Patience.h"
#include "Support/TemporaryFolder.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <poll.h>
#include <pty.h>
#include <string>
#include <sys/ioctl.h>
#include <termios.h>
#include <utility>
#include <vector>

/// labsh at a terminal, whose other end is ours.
class AtTerminal
{
public:
    struct Setup
    {
        std::vector<std::string> arguments{};
        std::map<std::string, std::string> environment{}; // besides that of a plain terminal, without colours
        unsigned short columns = 80;
        const char* output = nullptr; // the file that standard output goes to instead
    };

    explicit AtTerminal(const Setup& setup)
    {
        const winsize window = {24, setup.columns, 0, 0};
        id = forkpty(&terminal, nullptr, nullptr, &window);
        if (id == 0)
            Execute(setup);
    }
    ~AtTerminal()
    {
        if (id > 0)
            kill(id, SIGKILL);
        Wait();
        close(terminal);
    }
    AtTerminal(const AtTerminal&) = delete;
    AtTerminal& operator=(const AtTerminal&) = delete;

    /// What the terminal shows up to the mark, "" when it closed before; without a mark all up to the end.
    std::string ReadTo(const std::string& mark = "")
    {
        constexpr int patience = 60000; // milliseconds, for a shell that has stopped answering
        std::string text;
        for (char byte = 0; mark.empty() || !text.ends_with(mark); text += byte) {
            pollfd input = {terminal, POLLIN, 0};
            if (poll(&input, 1, patience) != 1 || read(terminal, &byte, 1) != 1)
                return mark.empty() ? text : "";
        }
        return text;
    }
    /// Types the keys and reads up to the mark.
    std::string Type(const std::string& keys, const std::string& mark)
    {
        return write(terminal, keys.data(), keys.size()) < 0 ? "" : ReadTo(mark);
    }
    /// Types the keys, and waits for nothing.
    void Put(const std::string& keys) const
    {
        [[maybe_unused]] const ssize_t count = write(terminal, keys.data(), keys.size());
    }
    /// What the terminal has shown by now, since the last time.
    std::string Take() const
    {
        std::string text;
        pollfd input = {terminal, POLLIN, 0};
        for (char byte = 0; poll(&input, 1, 0) == 1 && read(terminal, &byte, 1) == 1;)
            text += byte;
        return text;
    }
    void SetWindow(unsigned short rows, unsigned short columns) const
    {
        const winsize size = {rows, columns, 0, 0};
        ioctl(terminal, TIOCSWINSZ, &size);
    }
    /// What ended has left its number to others, which nobody may signal or wait for.
    int Wait() { return id > 0 ? WaitForExit(std::exchange(id, 0)) : 0; }
    void Send(int signal) const { kill(id, signal); }
    /// Whether the terminal treats lines and echoes them, as a shell leaves it.
    bool IsCooked() const
    {
        termios settings = {};
        return tcgetattr(terminal, &settings) == 0 && (settings.c_lflag & ICANON) && (settings.c_lflag & ECHO);
    }

private:
    int terminal = -1;
    pid_t id = -1;

    [[noreturn]] static void Execute(const Setup& setup)
    {
        setenv("TERM", "xterm", 1);
        setenv("NO_COLOR", "1", 1);
        setenv("PAGER", "sed 's/^/paged: /'", 1);
        unsetenv("LC_ALL"); // UTF-8 is to be typed without a word about it
        for (const auto& [name, value] : setup.environment)
            setenv(name.c_str(), value.c_str(), 1);
        std::vector<char*> arguments = {const_cast<char*>(LABSH_FILE)};
        for (const std::string& argument : setup.arguments)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        if (!setup.output || std::freopen(setup.output, "w", stdout))
            execv(LABSH_FILE, arguments.data());
        _exit(127);
    }
};

/// One that asks for commands.
class AtPrompt : public AtTerminal
{
public:
    explicit AtPrompt(const std::string& dataFolder, const Setup& setup = {}) : AtTerminal(Add(dataFolder, setup))
    {
        ReadTo(prompt);
    }

    static constexpr const char* prompt = "labsh> ";

    std::string Type(const std::string& keys, const std::string& mark = prompt) { return AtTerminal::Type(keys, mark); }
    /// Which draws the line anew.
    void Resize(unsigned short rows, unsigned short columns)
    {
        SetWindow(rows, columns);
        Type("");
    }
    /// What the terminal shows below the line that is typed, up to the next prompt.
    std::string Run(const std::string& line)
    {
        std::string text = Type(line + "\r");
        std::erase(text, '\r');
        text.erase(0, text.find('\n') + 1);
        return text.substr(0, text.rfind(prompt));
    }

private:
    static Setup Add(const std::string& dataFolder, Setup setup)
    {
        setup.arguments.insert(setup.arguments.begin(), {"--data", dataFolder});
        return setup;
    }
};
