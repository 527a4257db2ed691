#pragma once

#include "BuiltIns/JUnitReport.h"
#include "Commands/RunObserver.h"
#include "Services/File.h"

#include <chrono>
#include <vector>

struct ScriptFailure;

/// Watches the asserts of a run, counts them and reports them for build servers: each Assert, and each AssertFail with
/// all that it runs, is a case. An Assert whose failure the command around it tolerates has been skipped, as it were.
/// Any other failure of a command of the script is a case too, so that a script which broke off is not taken for a good
/// one.
class AssertReport : public RunObserver
{
public:
    /// Makes the file, or empties it. Throws HostException(FileError).
    explicit AssertReport(const WString& file) : file(file, FileOpenMode::Create, FileAccessMode::Write) {}

    void OnBegin(const CommandRun& run) noexcept override;
    void OnCondition(
        const CommandRun& run, const WString& condition, bool holds, const WString& variableTrace) noexcept override;
    void OnEnd(const CommandRun& run) noexcept override;

    /// A command of the script has failed.
    void AddFailure(const WString& scriptName, const ScriptFailure& failure);
    /// Writes the closing line on standard error, and the file. Throws HostException(FileError).
    void Finish();

private:
    using Clock = std::chrono::steady_clock;

    File file;
    JUnitReport report;
    std::vector<Clock::time_point> starts; // of the runs that are under way
    WString trace;                         // what the last condition has read
    unsigned int passedCount = 0;
    unsigned int failedCount = 0;
    unsigned int toleratedCount = 0;
    bool hasAssertFailed = false;  // in the script's command that is being run
    std::vector<WString> failures; // their places, each once

    void Add(const CommandRun& run, JUnitCase& test);
};
