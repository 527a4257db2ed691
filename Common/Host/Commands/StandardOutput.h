#pragma once

#include "Commands/Pipe.h"
#include "Commands/StandardStream.h"
#include "HostApi.h"
#include "Text/WStringArray.h"

#include <array>
#include <cstddef>
#include <string_view>

/// The standard output of the process, as UTF-8. Lines are gathered, so that a command line costs one write; those for
/// a terminal are not. The first write that fails requests an abort, which ends all that runs, and whatever is written
/// behind it is dropped. For one thread.
class HOST_API StandardOutput : public Pipe
{
public:
    static StandardOutput& Get();
    void DoWriteLine(const WString& line) override;
    void Flush() noexcept override;
    /// The errno of the write that failed; 0 when none did.
    int GetFault() const noexcept { return fault; }

    /// Whether a terminal has shown that line, blanks around it apart, since ForgetShown; no more than the last few
    /// lines count. False where standard output is no terminal.
    bool HasShown(std::wstring_view line) const;
    void ForgetShown() noexcept { shown.Clear(); }

private:
    StandardOutput();

    StandardStream stream;
    const bool isTerminal;
    std::array<char, 0x4000> block{};
    std::size_t length = 0;
    int fault = 0;
    WStringArray shown;

    void Remember(const WString& line);
    void Write(std::string_view bytes) noexcept;
};
