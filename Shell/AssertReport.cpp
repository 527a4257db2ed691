#include "AssertReport.h"

#include "Report.h"
#include "RunningScript.h"

#include <algorithm>
#include <new>
#include <utility>

static constexpr const wchar_t* assertFail = L"AssertFail";

static bool IsWithinAssertFail(const CommandRun& run)
{
    const CommandRun* caller = run.caller;
    while (caller && caller->outcome.command != assertFail)
        caller = caller->caller;
    return caller;
}

static bool IsTolerated(const CommandRun& run)
{
    const CommandRun* level = &run;
    while (level && (level->flags & CommandFlags::toleratesFailure) == 0)
        level = level->caller;
    return level;
}

/// The line that is being run, with the script's name unless that is the one that labsh was given.
static WString DescribePlace()
{
    const RunningScript* const script = RunningScript::GetInnermost();
    if (!script)
        return {};
    return (script->IsOutermost() ? WString() : script->name + L":") + WString::Format(L"%u", script->line);
}

void AssertReport::OnBegin(const CommandRun& run) noexcept
try {
    if (!run.caller)
        hasAssertFailed = false;
    trace.Clear();
    starts.resize(run.depth + 1);
    starts.back() = Clock::now();
} catch (const std::bad_alloc&) { // the commands run all the same
}

void AssertReport::OnCondition(const CommandRun&, const WString&, bool, const WString& variableTrace) noexcept
try {
    trace = variableTrace;
} catch (const std::bad_alloc&) {
}

void AssertReport::OnEnd(const CommandRun& run) noexcept
try {
    const WString& name = run.outcome.command;
    if ((name != L"Assert" && name != assertFail) || IsWithinAssertFail(run))
        return;
    JUnitCase test;
    test.name = run.line.Trim();
    if (run.depth < starts.size())
        test.seconds = std::chrono::duration<double>(Clock::now() - starts[run.depth]).count();
    if (const RunningScript* const script = RunningScript::GetInnermost()) {
        test.group = test.file = script->name;
        test.line = script->line;
    }
    Add(run, test);
} catch (const std::bad_alloc&) {
}

void AssertReport::Add(const CommandRun& run, JUnitCase& test)
{
    const auto& [code, name, message, returnString, notes] = run.outcome;
    if (code.IsError())
        test.problems.push_back({message, code.ToString(), trace});
    if (!code.IsError()) {
        ++passedCount;
    } else if (IsTolerated(run)) {
        test.kind = JUnitCase::Skipped;
        ++toleratedCount;
    } else {
        hasAssertFailed = true;
        ++failedCount;
        if (const WString place = DescribePlace(); std::ranges::find(failures, place) == failures.end())
            failures.push_back(place);
    }
    report.Add(test);
}

void AssertReport::AddFailure(const WString& scriptName, const ScriptFailure& failure)
{
    if (std::exchange(hasAssertFailed, false))
        return;
    const auto& [code, name, message, returnString, notes] = failure.outcome;
    JUnitCase test;
    test.group = test.file = scriptName;
    test.line = failure.line;
    test.name = name;
    test.kind = JUnitCase::Error;
    test.problems.push_back({message, code.ToString(), {}});
    report.Add(test);
}

void AssertReport::Finish()
{
    const unsigned int count = passedCount + toleratedCount + failedCount;
    WString line = WString::Format(L"%u %s, %u passed", count, count == 1 ? L"assert" : L"asserts", passedCount);
    if (toleratedCount != 0)
        line.AppendFormat(L", %u tolerated", toleratedCount);
    line.AppendFormat(L", %u failed", failedCount);
    const wchar_t* separator = failures.size() == 1 ? L": line " : L": lines ";
    for (const WString& place : failures) {
        line += separator + place;
        separator = L", ";
    }
    WriteErrorLine(line);
    report.Write(file);
}
