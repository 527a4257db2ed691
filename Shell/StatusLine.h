#pragma once

#include "Commands/RunObserver.h"
#include "Screen.h"
#include "Services/Clock.h"

#include <map>
#include <optional>
#include <vector>

/// Shows work that takes long on one line of the terminal, which goes away: the script with its line, how often the
/// innermost loop has run, a reference that its condition reads, and what is left: of a loop that knows its greatest
/// number of rounds, else of a wait, as in
///
///     warm.txt 7/9  While 12 of 30  TempOptics=36.42  0:14 left
///
/// One at a time, for the thread that runs the commands; nothing else replaces the clock meanwhile.
class StatusLine : public RunObserver
{
public:
    /// Whether both outputs lead to a terminal that lines can be drawn over.
    static bool CanBeShown();

    StatusLine();
    ~StatusLine() override;

    void OnBegin(const CommandRun& run) noexcept override;
    void OnCondition(
        const CommandRun& run, const WString& condition, bool holds, const WString& variableTrace) noexcept override;
    void OnEnd(const CommandRun& run) noexcept override;

    /// Takes the line away if it is shown, for what is to be written now.
    static void Erase() noexcept;

    /// There is no line while it lives.
    class Pause
    {
    public:
        Pause() noexcept;
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        StatusLine* const paused;
    };

private:
    /// The clock of waits during which the line is drawn.
    class WaitClock : public Clock
    {
    public:
        explicit WaitClock(StatusLine& line) : line(line) {}
        void Sleep(unsigned int milliseconds) override;

    private:
        StatusLine& line;
    };

    /// A command that evaluates conditions, while it runs.
    struct Conditional
    {
        const CommandRun* run;
        WString condition;  // its first one
        unsigned int begin; // ticks
        unsigned int count = 0;
    };

    static inline StatusLine* current = nullptr;

    WaitClock clock{*this};
    Screen::Line line;
    unsigned int begin; // ticks, when the work began
    unsigned int drawnAt;
    std::vector<Conditional> conditionals; // the innermost is the last
    std::map<WString, unsigned int> lineCounts;

    void DrawIfDue(std::optional<unsigned int> left = {}) noexcept;
    WString Describe(std::optional<unsigned int> left);
    WString DescribeScript();
    const Conditional* FindLoop() const;
    WString DescribeCommand() const;
    WString DescribeTimeLeft(std::optional<unsigned int> wait) const;
    WString DescribeReference() const;
    unsigned int CountLines(const WString& script);
};
