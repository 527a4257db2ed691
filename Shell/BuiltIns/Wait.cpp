#include "BuiltIns/BuiltIn.h"

namespace {
constexpr const wchar_t* usage_lc[] = {
    L"Usage: Wait <seconds>",
    L" Waits for 0 to 86400 seconds. Milliseconds count.",
};
constexpr BuiltInRecord record_lc = {L"Wait", 2013, usage_lc};

class Wait : public BuiltIn
{
public:
    Wait() : BuiltIn(record_lc) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Wait::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options, 1, 1);
    double seconds = 0;
    if (!arguments.At(0).TryParseDouble(seconds, 0, 86400))
        Fail(badValue, arguments.At(0) + L" is no time from 0 to 86400 seconds");
    SleepAbortable(static_cast<int>(seconds * 1000));
    return ExitCode(0);
}
} // namespace

CommandBase* CreateWait()
{
    return new Wait();
}
