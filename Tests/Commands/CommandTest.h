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
    void Sleep(unsigned int milliseconds) override
    {
        waits.push_back(milliseconds);
        ManualClock::Sleep(milliseconds);
        onSleep();
    }

    std::vector<unsigned int> waits;
    std::function<void()> onSleep = [] {}; // what happens meanwhile
};

/// Runs lines with the plug-in's commands and some more: "Say" writes its arguments, "Fail" fails with the code that is
/// its argument, "Flags" writes the flags of its run, "Log" writes what the error log holds and empties it, and "Usage"
/// writes the help that all usages end with, or what the usage of a command has besides. The host has a data folder
/// with no settings, and the status item "VersionProductName".
class CommandTest : public testing::Test
{
protected:
    CommandTest();
    ~CommandTest() override;

    /// The lines that are written, one below the other. When the line fails, the last one is "exit <code>" and behind
    /// it what is told about the failure.
    std::string Run(const std::string& line, unsigned int runFlags = 0);

    RecordingClock clock;
    Environment environment;
};
