// A plug-in as others write them: one command, one automatic test that fails, no resources.

#include "Commands/CommandBase.h"
#include "Commands/CommandRegistry.h"
#include "Commands/TestCommand.h"
#include "Text/HostError.h"

namespace {
class Second : public CommandBase
{
public:
    WString GetName() override { return L"Second"; }
    unsigned int GetCommandId() override { return 5000; }
    const char* GetSourceCodeTimestamp() override { return ""; }
    ExitCode Main(ArgumentList& arguments, Options&) override
    {
        GetPipe().DoWriteLine(arguments.Count() == 0 ? L"second" : arguments.At(0));
        SetFailureMessage(L"Failed on purpose");
        return ExitCode(arguments.Count());
    }
    void ShowUsage() override {}
};

CommandBase* CreateSecond()
{
    return new Second();
}

void RunTests(TestCommand& test)
{
    WStringArray output;
    Assertion::AreEqual(test, L"5000:0:1", test.Run(L"Second x", output).ToString(), L"exit code");
    Assertion::AreEqual(test, L"<&>", L"\"\x01\"", L"second");
    Assertion::AreEqual(test, 0.5, 0.25, L"%s");
    Assertion::AreEqual(test, L"9015:0:13", test.Run(L"Assert 1=2", output).ToString(), L"another's command");
    Assertion::IsTrue(test, output.IsEmpty(), L"output");
    throw HostException(HostError::FileError, L"on\npurpose\uFFFF");
}
} // namespace

HOST_API CommandFactory DllRegistryGetNextCommand(unsigned int index)
{
    return index == 0 ? CreateSecond : nullptr;
}

HOST_API int DllRegistrySelectDll(const char*)
{
    return 0;
}

HOST_API bool DllRegistryTryGetNextAutomaticTest(int index, AutomaticTestEntry& entry)
{
    entry = AutomaticTestEntry(L"Second", L"Second plug-in", 1, RunTests);
    return index == 0;
}
