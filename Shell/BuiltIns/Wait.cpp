#include "BuiltIns/BuiltIn.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Wait <seconds>",
    L" Waits for 0 to 86400 seconds. Milliseconds count.",
};

class Wait : public BuiltIn
{
public:
    Wait() : BuiltIn(wait_gb) {}
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

constexpr CommandRecord wait_gb = {L"Wait", 2013, Create<Wait>, usage_lc};
