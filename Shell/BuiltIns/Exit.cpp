#include "BuiltIns/BuiltIn.h"
#include "Text/HostError.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Exit",
    L" Ends the shell and all its scripts, without an error.",
};

class Exit : public BuiltIn
{
public:
    Exit() : BuiltIn(exit_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override
    {
        Accept(arguments, options, 0, 0);
        throw HostException(HostError::ExitRequested);
    }
};
} // namespace

constexpr CommandRecord exit_gb = {L"Exit", 2005, Create<Exit>, usage_lc};
