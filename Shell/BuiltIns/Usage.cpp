#include "BuiltIns/ItemCommand.h"
#include "Commands/Reference.h"
#include "Instrument/System.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Usage [<pattern>]",
    L"       Usage <counter>[=<number>]",
    L"       Usage -z <counter>",
    L" Lists the usage counters that match the pattern, or all; shows a counter;",
    L" sets one; or deletes one.",
    L"Options:",
    L" -z     Zap/Delete the counter.",
    L" -json  Write what is listed or shown as a JSON object.",
};

constexpr OptionRecord options_lc[] = {ItemCommand::zap, ItemCommand::json};

class Usage : public ItemCommand
{
public:
    Usage() : ItemCommand(usage_gb) {}

protected:
    void GetNames(WStringArray& names) override { System::usage.GetNames(names); }
    bool TryGet(const WString& name, WString& value) override { return Reference::TryGetUsage(name, value); }
    void Set(const WString& name, const WString& value) override;
    bool TryDelete(const WString& name) override;
};

void Usage::Set(const WString& name, const WString& value)
{
    if (!System::usage.Set(name.ToCString(), ReadInt32(value)))
        Fail(failed, L"The usage counters cannot be written: " + System::usage.GetFault());
}

bool Usage::TryDelete(const WString& name)
{
    if (System::usage.TryDelete(name.ToCString()))
        return true;
    const WString fault = System::usage.GetFault();
    if (WString value; TryGet(name, value))
        FailToDelete(name, fault);
    return false;
}

constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Counter}, {ArgumentKind::Text, L"=", true, true}};
} // namespace

constexpr CommandRecord usage_gb = {L"Usage", 2012, Create<Usage>, usage_lc, options_lc, 0, arguments_lc, {0, 1}};
