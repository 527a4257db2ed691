#include "AssertReport.h"

#include "RunningScript.h"
#include "ScriptRunner.h"

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
    Settle(); // since a command goes on
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
    if (pending && pending->caller == &run) {
        if (run.outcome.code.IsError())
            HandUp(run);
        else
            Settle();
    }
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
    if (!code.IsError()) {
        ++passedCount;
        report.Add(test);
        return;
    }
    WString details = trace;
    for (const WString& note : notes)
        details.AppendWithSeparator(L"note: " + note, L"\n");
    test.problems.push_back({message, code.ToString(), details});
    pending = {test, DescribePlace(), nullptr, false};
    HandUp(run);
}

/// The pending failure has become one of this run, and is the matter of what runs it.
void AssertReport::HandUp(const CommandRun& run)
{
    pending->caller = run.caller;
    pending->isTolerated = run.flags & CommandFlags::toleratesFailure;
    if (!run.caller)
        Settle();
}

void AssertReport::Settle()
{
    if (!pending)
        return;
    Failure failure = *std::exchange(pending, std::nullopt);
    if (failure.isTolerated) {
        failure.test.kind = JUnitCase::Skipped;
        ++toleratedCount;
    } else {
        hasAssertFailed = true;
        ++failedCount;
        AddPlace(failure.place);
    }
    report.Add(failure.test);
}

void AssertReport::AddPlace(const WString& place)
{
    constexpr std::size_t shownPlaces = 20;
    if (allPlaces.insert(place).second && places.size() < shownPlaces)
        places.push_back(place);
}

void AssertReport::AddFailure(const WString& scriptName, const ScriptFailure& failure)
{
    if (!std::exchange(hasAssertFailed, false))
        AddError(scriptName, failure.line, failure.outcome);
}

void AssertReport::AddBreak(const HostException& failure)
{
    AddError({}, 0, {failure, L"labsh", failure.GetMessage(), {}});
}

void AssertReport::AddError(const WString& scriptName, unsigned int line, const CommandRunner::Outcome& outcome)
{
    JUnitCase test;
    test.group = test.file = scriptName;
    test.line = line;
    test.name = outcome.command;
    test.kind = JUnitCase::Error;
    test.problems.push_back({outcome.message, outcome.code.ToString(), {}});
    report.Add(test);
}

WString AssertReport::FormatSummary() const
{
    const unsigned int count = passedCount + toleratedCount + failedCount;
    WString line = WString::Format(L"%u %s, %u passed", count, count == 1 ? L"assert" : L"asserts", passedCount);
    if (toleratedCount != 0)
        line.AppendFormat(L", %u tolerated", toleratedCount);
    line.AppendFormat(L", %u failed", failedCount);
    const wchar_t* separator = places.size() == 1 ? L": line " : L": lines ";
    for (const WString& place : places) {
        line += separator + place;
        separator = L", ";
    }
    if (const std::size_t rest = allPlaces.size() - places.size(); rest != 0)
        line.AppendFormat(L" and %u more", static_cast<unsigned int>(rest));
    return line;
}
