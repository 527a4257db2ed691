// What the commands' records say of their options is what their usage says.

#include "BuiltIns/BuiltIns.h"
#include "Commands/CommandBase.h"
#include "DllRegistryUtils.h"
#include "Support/HostTexts.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <memory>

namespace {
using Names = std::vector<std::string>;

std::vector<CommandFactory> GetFactories()
{
    std::vector<CommandFactory> factories;
    for (const CommandRecord* record : GetBuiltIns())
        factories.push_back(record->factory);
    for (unsigned int index = 0; const CommandFactory factory = DllRegistryGetNextCommand(index); ++index)
        factories.push_back(factory);
    return factories;
}

/// Adds the options that a line begins with: "c=" for "-c<count>", "h" and "help" for "-h[elp]".
void AddOptions(std::string_view line, Names& options)
{
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    if (!line.starts_with('-'))
        return;
    line = line.substr(1, line.find(' ') - 1);
    const std::size_t rest = line.find('[');
    const std::size_t value = line.find('<');
    const std::string name(line.substr(0, std::min(rest, value)));
    options.push_back(name + (value != line.npos ? "=" : ""));
    if (rest != line.npos)
        options.push_back(name + std::string(line.substr(rest + 1, line.find(']') - rest - 1)));
}

/// What the lines below "Options:" say.
Names GetOptionsOfUsage(const CommandRecord& record)
{
    Names options;
    bool isWithin = false;
    for (const UsageLine& line : record.usage) {
        const std::string text = WString(line.format).ToUtf8();
        if (!text.starts_with(' '))
            isWithin = text.starts_with("Options:");
        else if (isWithin)
            AddOptions(text, options);
    }
    return options;
}

Names GetOptionsOfTable(const CommandRecord& record)
{
    Names options;
    for (const OptionRecord& option : record.options)
        options.push_back(WString(option.name).ToUtf8() + (option.kind == OptionKind::Flag ? "" : "="));
    return options;
}
} // namespace

TEST(RecordsTest, DescribeTheOptionsOfTheUsage)
{
    for (const CommandFactory factory : GetFactories()) {
        const std::unique_ptr<CommandBase> command(factory());
        const std::string name = command->GetName().ToUtf8();
        const CommandRecord* const record = command->GetRecord();
        ASSERT_NE(record, nullptr) << name;
        EXPECT_EQ(record->factory, factory) << name;
        EXPECT_THAT(GetOptionsOfTable(*record), testing::UnorderedElementsAreArray(GetOptionsOfUsage(*record))) << name;
    }
}
