#include "Commands/TestCommand.h"

#include "Commands/CommandRunner.h"
#include "Commands/RunObserver.h"

ExitCode TestCommand::Run(const WString& line, WStringArray& output)
{
    const RunObserver::Pause pause; // a test's commands are no part of the script that runs it
    ArrayPipe pipe;
    const ExitCode code = CommandRunner::Run(line, pipe, environment, CommandFlags::noFailureLog).code;
    output = pipe.lines;
    return code;
}

void TestCommand::Fail(const WString& message)
{
    ++checks;
    failures.push_back(message);
}

static void Check(TestCommand& test, bool holds, const WString& failure)
{
    if (holds)
        test.Pass();
    else
        test.Fail(failure);
}

void Assertion::AreEqual(TestCommand& test, const WString& expected, const WString& actual, const WString& what)
{
    Check(test, expected == actual, WString::Format(L"%s: expected \"%s\", got \"%s\"", what, expected, actual));
}

void Assertion::AreEqual(TestCommand& test, double expected, double actual, const WString& what)
{
    Check(test, expected == actual, WString::Format(L"%s: expected %.17g, got %.17g", what, expected, actual));
}

void Assertion::IsTrue(TestCommand& test, bool condition, const WString& what)
{
    Check(test, condition, what);
}
