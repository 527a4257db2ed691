#include "BuiltIns/BuiltIn.h"
#include "Text/HostError.h"

namespace {
constexpr const wchar_t* usage_lc[] = {
    L"Usage: Exit",
    L" Ends the shell and all its scripts, without an error.",
};
constexpr BuiltInRecord record_lc = {L"Exit", 2005, usage_lc};

class Exit : public BuiltIn
{
public:
    Exit() : BuiltIn(record_lc) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override
    {
        Accept(arguments, options, 0, 0);
        throw HostException(HostError::ExitRequested);
    }
};
} // namespace

CommandBase* CreateExit()
{
    return new Exit();
}
