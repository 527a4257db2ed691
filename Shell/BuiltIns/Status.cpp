#include "BuiltIns/ItemCommand.h"
#include "DelayedStatus.h"
#include "Instrument/System.h"

#include <optional>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Status [<pattern>]",
    L"       Status [-d<seconds>] <name>[=<value>]",
    L" Lists the status items that match the pattern, or all; shows an item; or",
    L" sets one and saves it. A new item has the type of its value: bool, int,",
    L" double or string. Put double quotes around blanks.",
    L"Options:",
    L" -d<seconds>  Set the item after this time, 0 to 86400, while the shell goes",
    L"               on. A script, or the line of a command, ends when it is set,",
    L"               unless a failure or Exit ends it before. A signal such as Ctrl-C",
    L"               sets the item at once.",
    L"Example: Status -d2.5 TempOpticsStable=true",
};

constexpr NumberOption delay_lc(L"d", badOptionValue, 0, 86400, L"Set the item after so many seconds");
constexpr OptionRecord options_lc[] = {delay_lc};

class Status : public ItemCommand
{
public:
    Status() : ItemCommand(status_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

protected:
    void GetNames(WStringArray& names) override { System::status.GetNames(names); }
    bool TryGet(const WString& name, WString& value) override
    {
        return System::status.TryGetFormattedString(name, value);
    }
    void Set(const WString& name, const WString& value) override;

private:
    std::optional<double> delay; // seconds
};

ExitCode Status::Main(ArgumentList& arguments, Options& options)
{
    double seconds = 0;
    if (options.TryGetDouble(delay_lc, seconds))
        delay = seconds;
    return ItemCommand::Main(arguments, options);
}

void Status::Set(const WString& name, const WString& value)
{
    const bool isSet = delay ? DelayedStatus::TrySet(name, value, static_cast<unsigned int>(*delay * 1000))
                             : System::status.TrySet(name, value);
    if (!isSet)
        Fail(badValue, WString::Format(L"%s cannot be set to %s", name, value));
    if (!delay)
        System::status.Save();
}
} // namespace

constexpr CommandRecord status_gb = {L"Status", 2010, Create<Status>, usage_lc, options_lc};
