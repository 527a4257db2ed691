#pragma once

#include "Commands/CommandBase.h"
#include "HostApi.h"
#include "Text/WString.h"

#include <vector>

/// One run of an automatic test: it counts the checks, keeps the failures, and lets the test run commands. For the
/// thread that runs the test.
class HOST_API TestCommand
{
public:
    explicit TestCommand(const Environment& environment) : environment(environment) {}

    Environment& GetEnvironment() noexcept { return environment; }
    /// Runs a command line and returns its code; the lines it wrote stand in `output`.
    ExitCode Run(const WString& line, WStringArray& output);

    void Pass() noexcept { ++checks; }
    void Fail(const WString& message);
    unsigned int GetCheckCount() const noexcept { return checks; }
    const std::vector<WString>& GetFailures() const noexcept { return failures; }

private:
    Environment environment;
    unsigned int checks = 0;
    std::vector<WString> failures;
};

/// Checks of automatic tests. Each counts one check and, when it does not hold, records `what` with both values.
namespace Assertion {
HOST_API void AreEqual(TestCommand& test, const WString& expected, const WString& actual, const WString& what);
HOST_API void AreEqual(TestCommand& test, double expected, double actual, const WString& what);
HOST_API void IsTrue(TestCommand& test, bool condition, const WString& what);
} // namespace Assertion
