#include "BuiltIns/Exit.h"

#include "BuiltIns/BuiltIn.h"
#include "Text/HostError.h"
#include "Text/NumberText.h"

#include <atomic>

static constexpr int noStatus = -1;
static std::atomic<int> status_lc = noStatus; // threads of other programs may all run it

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Exit [<status>]",
    L" Ends the shell and all its scripts, with an exit status from 0 to 255.",
    L" Without one it is 0, or 1 when a command of the script has failed.",
};

constexpr WholeNumberArgument exitStatus_lc(0, 255, L"exit status from 0 to 255");
constexpr ArgumentRecord arguments_lc[] = {exitStatus_lc};

class Exit : public BuiltIn
{
public:
    Exit() : BuiltIn(exit_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;
};

ExitCode Exit::Main(ArgumentList& arguments, Options& options)
{
    Accept(arguments, options);
    int status = 0;
    if (arguments.Count() == 1 &&
        !TryParseWhole(arguments.At(0).View(), status, static_cast<int>(exitStatus_lc.least),
            static_cast<int>(exitStatus_lc.greatest)))
        Fail(badValue, arguments.At(0) + L" is no " + exitStatus_lc.noun);
    if (arguments.Count() == 1)
        status_lc = status;
    throw HostException(HostError::ExitRequested);
}
} // namespace

std::optional<int> GetExitStatus()
{
    const int status = status_lc;
    return status == noStatus ? std::nullopt : std::optional(status);
}

constexpr CommandRecord exit_gb = {L"Exit", 2005, Create<Exit>, usage_lc, {}, 0, arguments_lc, {0, 1}};
