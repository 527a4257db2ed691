#pragma once

#include "Commands/LineSource.h"
#include "Instrument/Environment.h"

#include <memory>
#include <string>

/// Commands typed at the terminal, with editing, completion and a history that shells share. A final backslash goes on
/// in the next line, which has a prompt of its own; the lines come as one. Ctrl-C abandons the command.
///
/// Keys: Tab completes, and lists what may stand there once there is nothing to add; the arrows up and down look for
/// what begins with the text in front of the cursor; Ctrl-R searches as one types.
class Terminal : public LineSource
{
public:
    /// Without the name of a file the history is not kept. `environment` has the variables that are completed.
    Terminal(const std::string& historyFile, const Environment& environment);
    ~Terminal() override;
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /// Forgets an interrupt of the last command, then asks for a command. False at the end of the input and when
    /// another signal, or output that cannot be written, is to end the shell.
    bool TryReadLine(std::string& line) override;

private:
    struct Editor;
    std::unique_ptr<Editor> editor;
};
