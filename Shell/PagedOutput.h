#pragma once

#include "Commands/Pipe.h"

/// Output at the prompt. What the commands that list things write goes through a pager when the window has no room for
/// it: $PAGER, or else `less -FRX`, where that can be run. The output of all others, which may take their time, is
/// shown as it comes. Only where standard input and output are both a
/// terminal that can be drawn over.
class PagedOutput : public Pipe
{
public:
    explicit PagedOutput(Pipe& output) : output(output) {}

    void DoWriteLine(const WString& line) override;
    void Flush() noexcept override;

private:
    Pipe& output;
    WStringArray held;

    void WriteHeld();
};
