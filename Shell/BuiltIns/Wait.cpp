#include "BuiltIns/BuiltIn.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Wait <seconds>",
    L" Waits for 0 to 86400 seconds. Milliseconds count.",
};

constexpr NumberArgument seconds_lc(0, 86400, L"time from 0 to 86400 seconds");
constexpr ArgumentRecord arguments_lc[] = {seconds_lc};

class Wait : public BuiltIn
{
public:
    Wait() : BuiltIn(wait_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Wait::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options);
    double seconds = 0;
    if (!arguments.At(0).TryParseDouble(seconds, seconds_lc.least, seconds_lc.greatest))
        Fail(badValue, arguments.At(0) + L" is no " + seconds_lc.noun);
    SleepAbortable(static_cast<int>(seconds * 1000));
    return ExitCode(0);
}
} // namespace

constexpr CommandRecord wait_gb = {L"Wait", 2013, Create<Wait>, usage_lc, {}, 0, arguments_lc, {1, 1}};
