#include "BuiltIns/ItemCommand.h"
#include "Commands/Reference.h"
#include "Instrument/System.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Config [<pattern>]",
    L"       Config [<section>]<key>[=<value>]",
    L"       Config -doc",
    L" Lists the settings that match the pattern, or all; shows a setting; or",
    L" sets one and saves it. Put double quotes around blanks.",
    L"Options:",
    L" -doc  Write the configuration document: the keys that have been asked for,",
    L"        with their types, limits, defaults and descriptions.",
    L"Example: Config [Debug]LogAssertFail=false",
};

constexpr FlagOption document_lc(L"doc", badOptionValue, L"Write the configuration document");
constexpr OptionRecord options_lc[] = {document_lc};

class Config : public ItemCommand
{
public:
    Config() : ItemCommand(config_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

protected:
    void GetNames(WStringArray& names) override;
    bool TryGet(const WString& name, WString& value) override { return Reference::TryGetConfig(name, value); }
    void Set(const WString& name, const WString& value) override;
};

ExitCode Config::Main(ArgumentList& arguments, Options& options)
{
    if (!options.TryGetFlag(document_lc))
        return ItemCommand::Main(arguments, options);
    Accept(arguments, options, 0, 0);
    WStringArray lines;
    System::config.GetMetaData().GetDocument(lines);
    for (const WString& line : lines)
        GetPipe().DoWriteLine(line);
    return ExitCode(0);
}

void Config::GetNames(WStringArray& names)
{
    WStringArray sections;
    System::config.GetSections(sections);
    for (const WString& section : sections) {
        WStringArray keys;
        System::config.GetKeys(section, keys);
        for (const WString& key : keys)
            names.Add(WString::Format(L"[%s]%s", section, key));
    }
}

void Config::Set(const WString& name, const WString& value)
{
    WString section;
    WString key;
    if (!Reference::TrySplitConfigName(name, section, key))
        Fail(badValue, name + L" is no [section]key");
    System::config.SetString(section, key, value);
    System::config.Save();
}
} // namespace

constexpr CommandRecord config_gb = {L"Config", 2002, Create<Config>, usage_lc, options_lc};
