#pragma once

#include "Commands/CommandRunner.h"
#include "Support/ManualClock.h"

#include <functional>
#include <gtest/gtest.h>
#include <vector>

/// Remembers the waits.
class RecordingClock : public ManualClock
{
public:
    void Sleep(unsigned int milliseconds) override;

    std::vector<unsigned int> waits;
    std::function<void()> onSleep; // what happens meanwhile
};

/// One line of a session, and what it is expected to show: the lines that it writes and, when it fails, "exit <code>"
/// as the last one.
struct Step
{
    const char* line;
    const char* expected;
};

/// Runs lines with the plug-in's commands and three more: "Say" writes its arguments, "Fail" fails with the code that
/// is its argument, and "Flags" writes the flags of its run.
class CommandTest : public testing::Test
{
protected:
    CommandTest();
    ~CommandTest() override;

    std::string Run(const char* line, unsigned int runFlags = 0);
    void RunSession(std::initializer_list<Step> steps);
    std::string GetVariable(const char* name) const; // "(none)" when there is no such variable
    /// What a failing line leaves for the report of whoever ran it.
    std::string GetFailureMessage(const char* line);

    /// Gives the host a data folder with neither settings nor status items nor logs.
    static void StartSystem();
    static std::string ReadErrorLog();

    RecordingClock clock;
    Environment environment;
};
