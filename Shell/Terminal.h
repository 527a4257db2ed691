#pragma once

#include "LineSource.h"

#include <memory>
#include <string>

/// Lines typed at the terminal, with editing and a history that is kept in a file between sessions. Ctrl-C abandons the
/// line.
class Terminal : public LineSource
{
public:
    explicit Terminal(const std::string& historyFile);
    ~Terminal() override;
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Forgets an interrupt of the last command, then asks for a line. False at the end of the input and when another
    /// signal, or output that cannot be written, is to end the shell.
    bool TryReadLine(std::string& line) override;

private:
    struct Editor;
    std::unique_ptr<Editor> editor;
};
