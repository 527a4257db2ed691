#include "BuiltIns/ItemCommand.h"
#include "DelayedStatus.h"
#include "Instrument/StatusItemType.h"
#include "Instrument/System.h"

#include <optional>

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Status [<pattern>]",
    L"       Status [-n] [-d<seconds>] [-t<seconds>] <name>[=<value>]",
    L"       Status -z <name>",
    L" Lists the status items that match the pattern, or all; shows an item; sets",
    L" one and saves it; or deletes one. Put double quotes around blanks.",
    L"Options:",
    L" -n           Make the item if there is none: with the type of its value,",
    L"               bool, int, double or string.",
    L" -d<seconds>  Set the item after this time, 0 to 86400, while the shell goes",
    L"               on. A script, or the line of a command, ends when it is set,",
    L"               unless a failure or Exit ends it before. A signal such as Ctrl-C",
    L"               sets the item at once.",
    L" -t<seconds>  Let a number go there evenly in this time, 0 to 86400, while the",
    L"               shell goes on; with -d it starts when that time is over.",
    L" -z           Zap/Delete the item.",
    L" -json        Write what is listed or shown as a JSON object.",
    L"Example: Status -d2.5 TempOpticsStable=true",
    L"         Status -t10 TempOptics=37",
};

constexpr FlagOption make_lc(L"n", badOptionValue, L"Make the item if there is none");
constexpr NumberOption delay_lc(L"d", badOptionValue, 0, 86400, L"Set the item after so many seconds");
constexpr NumberOption travel_lc(L"t", badOptionValue, 0, 86400, L"Let a number go there evenly in so many seconds");
constexpr OptionRecord options_lc[] = {make_lc, delay_lc, travel_lc, ItemCommand::zap, ItemCommand::json};

constexpr const wchar_t* live_lc = L"its value is always that of the moment";

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
    bool TryDelete(const WString& name) override;
    bool IsText(const WString& name) override;

private:
    [[noreturn]] void FailToSet(const WString& name, const WString& value);

    bool makes = false;
    std::optional<double> delay; // seconds
    std::optional<double> travel;
};

ExitCode Status::Main(ArgumentList& arguments, Options& options)
{
    double seconds = 0;
    makes = options.TryGetFlag(make_lc);
    if (options.TryGetDouble(delay_lc, seconds))
        delay = seconds;
    if (options.TryGetDouble(travel_lc, seconds))
        travel = seconds;
    return ItemCommand::Main(arguments, options);
}

void Status::Set(const WString& name, const WString& value)
{
    if (!makes && !System::status.ContainsItem(name))
        FailAsUnknown(name, L"Status -n makes a new one");
    const auto toMilliseconds = [](const std::optional<double>& seconds) {
        return static_cast<unsigned int>(seconds.value_or(0) * 1000);
    };
    const bool isLater = delay || travel;
    if (isLater)
        System::status.Save(); // what cannot be saved now is refused now
    const bool isSet = isLater ? DelayedStatus::TrySet(name, value, toMilliseconds(delay), toMilliseconds(travel))
                               : System::status.TrySet(name, value);
    if (!isSet)
        FailToSet(name, value);
    if (!isLater)
        System::status.Save();
}

void Status::FailToSet(const WString& name, const WString& value)
{
    if (System::status.IsLive(name))
        Fail(badValue, name + L" cannot be set: " + live_lc);
    const StatusItemType* const type = FindStatusItemType(static_cast<StatusType>(System::status.GetItemType(name)));
    if (type && !type->fits(value))
        Fail(badValue, WString::Format(L"\"%s\" is no %s, as %s is", value, type->name, name));
    Fail(badValue, WString::Format(L"%s cannot %s %s", name, travel ? L"go evenly to" : L"be set to", value));
}

bool Status::TryDelete(const WString& name)
{
    if (System::status.TryDelete(name)) {
        System::status.Save();
        return true;
    }
    if (System::status.IsLive(name))
        FailToDelete(name, live_lc);
    return false;
}

bool Status::IsText(const WString& name)
{
    const int type = System::status.GetItemType(name);
    return type == ST_String || type == ST_Formatted || type == ST_ExitCode;
}
constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::StatusItem}, {ArgumentKind::Text, L"=", true, true}};
} // namespace

constexpr CommandRecord status_gb = {L"Status", 2010, Create<Status>, usage_lc, options_lc, 0, arguments_lc, {0, 1}};
