#include "BuiltIns/ItemCommand.h"
#include "Services/System.h"
#include "Text/WholeNumber.h"

#include <limits>

namespace {
constexpr const wchar_t* usage_lc[] = {
    L"Usage: Usage [<pattern>]",
    L"       Usage <counter>[=<number>]",
    L" Lists the usage counters that match the pattern, or all; shows a counter;",
    L" or sets one.",
};
constexpr BuiltInRecord record_lc = {L"Usage", 2012, usage_lc};

class Usage : public ItemCommand
{
public:
    Usage() : ItemCommand(record_lc) {}

protected:
    void GetNames(WStringArray& names) override { System::usage.GetNames(names); }
    bool TryGet(const WString& name, WString& value) override;
    void Set(const WString& name, const WString& value) override;
};

bool Usage::TryGet(const WString& name, WString& value)
{
    int count = 0;
    if (!System::usage.TryGetUsageValue(name.ToCString(), count))
        return false;
    value = WString::Format(L"%d", count);
    return true;
}

void Usage::Set(const WString& name, const WString& value)
{
    int count = 0;
    if (!TryParseWhole(value.View(), count, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()))
        Fail(badValue, value + L" is no 32-bit whole number");
    if (!System::usage.Set(name.ToCString(), count))
        Fail(failed, L"The usage counters cannot be written");
}
} // namespace

CommandBase* CreateUsage()
{
    return new Usage();
}
