#pragma once

#include "BuiltIns/JUnitReport.h"
#include "Commands/RunObserver.h"
#include "Services/File.h"
#include "Text/HostError.h"

#include <chrono>
#include <optional>
#include <set>
#include <vector>

struct ScriptFailure;

/// Watches the asserts of a run, counts them and reports them for build servers: each Assert, and each AssertFail with
/// all that it runs, is a case. An Assert whose failure a command around it tolerates, and goes on, has been skipped,
/// as it were. Any other failure of a command of the script is a case too, so that a script which broke off is not
/// taken for a good one.
class AssertReport : public RunObserver
{
public:
    /// Makes the file, or empties it. Throws HostException(FileError).
    explicit AssertReport(const WString& name) : name(name), file(name, FileOpenMode::Create, FileAccessMode::Write) {}

    void OnBegin(const CommandRun& run) noexcept override;
    void OnCondition(
        const CommandRun& run, const WString& condition, bool holds, const WString& variableTrace) noexcept override;
    void OnEnd(const CommandRun& run) noexcept override;

    /// A command of the script has failed.
    void AddFailure(const WString& scriptName, const ScriptFailure& failure);
    /// The run broke off otherwise: its script cannot be read, for one.
    void AddBreak(const HostException& failure);
    /// Writes the file. Throws HostException(FileError).
    void Write() { report.Write(file, name); }
    /// Whether an assert has failed that nothing tolerates; If may have gone on after it.
    bool HasFailures() const noexcept { return failedCount != 0; }
    /// The line that closes the run: how many asserts there were, and where they failed.
    WString FormatSummary() const;

private:
    using Clock = std::chrono::steady_clock;

    /// An assert that has failed, of which it is not known yet whether a command around it goes on.
    struct Failure
    {
        JUnitCase test;
        WString place;
        const CommandRun* caller;
        bool isTolerated; // by that caller, if it goes on
    };

    const WString name;
    File file;
    JUnitReport report;
    std::optional<Failure> pending;
    std::vector<Clock::time_point> starts; // of the runs that are under way
    WString trace;                         // what the last condition has read
    unsigned int passedCount = 0;
    unsigned int failedCount = 0;
    unsigned int toleratedCount = 0;
    bool hasAssertFailed = false; // in the script's command that is being run
    std::vector<WString> places;  // of the first asserts that failed, each once
    std::set<WString> allPlaces;

    void Add(const CommandRun& run, JUnitCase& test);
    void HandUp(const CommandRun& run);
    void Settle();
    void AddPlace(const WString& place);
    void AddError(const WString& scriptName, unsigned int line, const CommandRunner::Outcome& outcome);
};
