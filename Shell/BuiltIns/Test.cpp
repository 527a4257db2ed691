#include "BuiltIns/BuiltIn.h"
#include "BuiltIns/JUnitReport.h"
#include "Commands/CommandRegistry.h"
#include "Commands/TestCommand.h"
#include "Text/Abort.h"
#include "Text/HostError.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Test [-junit<file>] [<pattern>]",
    L" Runs the automatic tests of the plug-ins whose names match the pattern, or",
    L" all, and writes a line for each.",
    L"Options:",
    L" -junit<file>  Write a JUnit report as well.",
};

constexpr FileOption report_lc(L"junit", badOptionValue, 1, 4096, L"Write a JUnit report to this file");
constexpr OptionRecord options_lc[] = {report_lc};
constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Test}};

class Test : public BuiltIn
{
public:
    Test() : BuiltIn(test_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

private:
    void Show(const AutomaticTestEntry& entry, const TestCommand& test);
};

TestCommand RunTest(const AutomaticTestEntry& entry)
{
    TestCommand test{Environment()};
    try {
        entry.run(test);
    } catch (const HostException& exception) {
        test.Fail(L"The test threw: " + exception.ToString() + L" " + exception.GetMessage());
    } catch (const ExitCode& code) {
        test.Fail(L"The test threw: " + code.ToString());
    } catch (const std::exception& exception) {
        test.Fail(L"The test threw: " + WString::FromUtf8(exception.what()));
    } catch (...) {
        test.Fail(L"The test threw");
    }
    Abort::ThrowIfRequested();
    return test;
}

void AddTo(JUnitReport& report, const AutomaticTestEntry& entry, const TestCommand& test)
{
    JUnitCase result;
    result.group = entry.name;
    result.name = entry.title;
    for (const WString& failure : test.GetFailures())
        result.problems.push_back({failure, {}, {}});
    report.Add(result);
}

ExitCode Test::Main(ArgumentList& arguments, Options& options)
{
    WString reportFile;
    const bool writesReport = options.TryGetString(report_lc, reportFile);
    Accept(arguments, options);
    const WString pattern = arguments.Count() == 0 ? L"*" : arguments.At(0);

    JUnitReport report;
    unsigned int testCount = 0;
    unsigned int failureCount = 0;
    for (const AutomaticTestEntry& entry : CommandRegistry::GetTests()) {
        if (!entry.name.IsWildcardMatch(pattern.ToCString(), true))
            continue;
        const TestCommand test = RunTest(entry);
        Show(entry, test);
        AddTo(report, entry, test);
        ++testCount;
        failureCount += !test.GetFailures().empty();
    }
    if (writesReport) {
        File file(reportFile, FileOpenMode::Create, FileAccessMode::Write);
        report.Write(file, reportFile);
    }
    if (testCount == 0)
        Fail(notFound, L"There is no test " + pattern);
    if (failureCount > 0)
        Fail(failed, WString::Format(L"%u of %u tests failed", failureCount, testCount));
    return ExitCode(0);
}

void Test::Show(const AutomaticTestEntry& entry, const TestCommand& test)
{
    GetPipe().WriteLine(L"%s: %u checks, %u failures", entry.name, test.GetCheckCount(), test.GetFailures().size());
    for (const WString& failure : test.GetFailures())
        GetPipe().DoWriteLine(L"  " + failure);
}
} // namespace

constexpr CommandRecord test_gb = {L"Test", 2011, Create<Test>, usage_lc, options_lc, 0, arguments_lc, {0, 1}};
