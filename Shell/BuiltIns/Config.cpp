#include "BuiltIns/ItemCommand.h"
#include "Commands/Reference.h"
#include "Instrument/System.h"

namespace {
constexpr UsageLine usage_lc[] = {
    L"Usage: Config [<pattern>]",
    L"       Config [-n] [<section>]<key>[=<value>]",
    L"       Config -z [<section>]<key>",
    L"       Config -doc",
    L" Lists the settings that match the pattern, or all; shows a setting; sets",
    L" one and saves it; or deletes one. Put double quotes around blanks.",
    L"Options:",
    L" -n     Make the setting if there is none, and take a value of another kind",
    L"         than it has.",
    L" -z     Zap/Delete the setting.",
    L" -json  Write what is listed or shown as a JSON object.",
    L" -doc   Write the configuration document: the keys that have been asked for,",
    L"         with their types, limits, defaults and descriptions.",
    L"Example: Config [Debug]LogAssertFail=false",
};

constexpr FlagOption make_lc(L"n", badOptionValue, L"Make the setting if there is none");
constexpr FlagOption document_lc(L"doc", badOptionValue, L"Write the configuration document");
constexpr OptionRecord options_lc[] = {make_lc, ItemCommand::zap, ItemCommand::json, document_lc};

class Config : public ItemCommand
{
public:
    Config() : ItemCommand(config_gb) {}
    ExitCode Main(ArgumentList& arguments, Options& options) override;

protected:
    void GetNames(WStringArray& names) override;
    bool TryGet(const WString& name, WString& value) override { return Reference::TryGetConfig(name, value); }
    void Set(const WString& name, const WString& value) override;
    bool TryDelete(const WString& name) override;
    bool IsText(const WString& name) override;

private:
    bool makes = false;

    void Check(const WString& section, const WString& key, const WString& value);
    void CheckKind(const WString& former, const WString& value);
};

ExitCode Config::Main(ArgumentList& arguments, Options& options)
{
    makes = options.TryGetFlag(make_lc);
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
    Check(section, key, value);
    System::config.SetString(section, key, value);
    System::config.Save();
}

/// Fails for a value that whoever reads the setting would refuse, as far as that is known.
void Config::Check(const WString& section, const WString& key, const WString& value)
{
    ConfigMetaData::Item item;
    WString former;
    const bool isThere = System::config.TryGetString(section, key, former);
    if (System::config.GetMetaData().TryGet(section, key, item)) {
        if (!ConfigMetaData::Fits(item, value))
            Fail(badValue, L"\"" + value + L"\" does not fit: " + ConfigMetaData::Describe(item));
    } else if (!makes && isThere) {
        CheckKind(former, value);
    } else if (!makes) {
        FailAsUnknown(WString::Format(L"[%s]%s", section, key), L"Config -n makes a new one");
    }
}

/// As far as is known; else it shows.
bool Config::IsText(const WString& name)
{
    WString section;
    WString key;
    ConfigMetaData::Item item;
    return Reference::TrySplitConfigName(name, section, key) &&
        System::config.GetMetaData().TryGet(section, key, item) && item.type == ConfigDataType::Str;
}

/// Settings that nobody has asked for yet have the kind of their value.
void Config::CheckKind(const WString& former, const WString& value)
{
    bool flag = false;
    double number = 0;
    const auto refuse = [&](const wchar_t* kind) {
        Fail(badValue, WString::Format(L"\"%s\" is no %s, as %s is; Config -n takes it", value, kind, former));
    };
    if (former.TryGetBool(flag) && !value.TryGetBool(flag))
        refuse(L"boolean");
    if (former.TryParseDouble(number) && !value.TryParseDouble(number))
        refuse(L"number");
}

bool Config::TryDelete(const WString& name)
{
    WString section;
    WString key;
    if (!Reference::TrySplitConfigName(name, section, key) || !System::config.TryDelete(section, key))
        return false;
    System::config.Save();
    return true;
}
constexpr ArgumentRecord arguments_lc[] = {{ArgumentKind::Setting}, {ArgumentKind::Text, L"=", true, true}};
} // namespace

constexpr CommandRecord config_gb = {L"Config", 2002, Create<Config>, usage_lc, options_lc, 0, arguments_lc, {0, 1}};
