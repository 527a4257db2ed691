// What the commands' records say of their options is what their usage says.

#include "BuiltIns/BuiltIns.h"
#include "Commands/CommandBase.h"
#include "DllRegistryUtils.h"
#include "Support/HostTexts.h"

#include <gmock/gmock.h>
#include <memory>
#include <regex>

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

/// What stands at the start of the lines below "Options:": "c=" for "-c<count>", "h" and "help" for "-h[elp]".
Names GetOptionsOfUsage(const CommandRecord& record)
{
    const std::regex pattern(R"( +-([a-z]+)(?:\[([a-z]+)\])?(<[A-Za-z]+>)? .*)");
    Names options;
    bool isWithin = false;
    for (const UsageLine& line : record.usage) {
        const std::string text = WString(line.format).ToUtf8();
        if (!text.starts_with(' '))
            isWithin = text.starts_with("Options:");
        if (std::smatch parts; isWithin && std::regex_match(text, parts, pattern)) {
            options.push_back(parts.str(1) + (parts[3].matched ? "=" : ""));
            if (parts[2].matched)
                options.push_back(parts.str(1) + parts.str(2));
        }
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
