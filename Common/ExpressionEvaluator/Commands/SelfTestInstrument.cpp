// References and functions that look at the instrument. Status items cannot be taken back once they are made, so those
// that are there are read, whatever they are; everything else is made for the test under names of its own and removed.

#include "FunctionClasses.h"
#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "NumberFormat.h"
#include "SelfTestParts.h"
#include "Services/File.h"
#include "Text/HostError.h"

#include <algorithm>
#include <limits>
#include <sys/mman.h>
#include <unistd.h>

namespace {
using SelfTest::Row;
using IntLimits = std::numeric_limits<int>;

constexpr wchar_t nameCharacters[] = L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.";

/// Evaluates with an environment of its own.
class Bench
{
public:
    explicit Bench(TestCommand& test) : test(test) {}

    void Set(const WString& name, const WString& value) { environment.SetString(name, value); }
    WString Outcome(const WString& expression) const
    {
        ExpressionEvaluator evaluator(true, environment, nullptr, nameCharacters, 0);
        return SelfTest::Outcome(evaluator, expression);
    }
    void Check(const WString& expression, const WString& outcome) const
    {
        Assertion::AreEqual(test, outcome, Outcome(expression), expression);
    }
    void Check(std::span<const Row> rows) const
    {
        for (const Row& row : rows)
            Check(WString::FromUtf8(row.input), WString::FromUtf8(row.outcome));
    }

private:
    TestCommand& test;
    Environment environment;
};

constexpr Row environment_lc[] = {
    {"count+1", "8.5"},
    {"abs(COUNT)", "7.5"},
    {"%E{ count } * 2", "15"},
    {"%e{Truth}", "TRUE"},
    {"truth", "TRUE"},
    {"word", "'7 apples'"},
    {"hex", "'0x10'"},
    {"pi", "3"},
    {"%E{none}", "48 %E{none} @1"},
    {"1+%E{none}", "48 Missing variable: %E{none} @3"},
    {"none+1", "48 Missing variable: none @1"},
    {"GetEnv(\"count\", 1/0)", "7.5"},
    {"GetEnv(\"Truth\", 0)", "TRUE"},
    {"GetEnv(\"word\", 0)", "'7 apples'"},
    {"5/GetEnv(\"none\", 0)", "133 Divide by zero @9"},
    {"GetEnv(\"none\", 1/0)", "133 Divide by zero @18"},
    {"GetEnv(1, 2)", "8 Type mismatch @8"},
};

void TestEnvironment(Bench& bench)
{
    bench.Set(L"count", L"7.50");
    bench.Set(L"truth", L"TRUE");
    bench.Set(L"word", L"7 apples");
    bench.Set(L"hex", L"0x10");
    bench.Set(L"pi", L"3");
    bench.Check(environment_lc);
}

/// What %S{} and GetStatus() must give for an item, from the table itself.
struct StatusTexts
{
    WString reference;
    WString function;
};

StatusTexts ExpectStatus(const WString& name, int type)
{
    const StatusTable& status = System::status;
    StatusTexts texts{WString::Format(L"40 Cannot access status value (ST_*=%d) @4", type), L""};
    bool truth = false;
    double number = 0;
    int whole = 0;
    unsigned int natural = 0;
    WString text;
    ExitCode code;
    switch (type) {
    case 1:
        if (status.TryGetBool(name, truth))
            texts.reference = texts.function = truth ? L"TRUE" : L"FALSE";
        return texts;
    case 2:
        if (status.TryGetDouble(name, number))
            texts.reference = texts.function = DoubleToString(number);
        return texts;
    case 3:
        if (status.TryGetString(name, text))
            texts.reference = texts.function = L"'" + text + L"'";
        return texts;
    case 4:
        if (status.TryGetExitCode(name, code))
            texts.reference = texts.function = L"'" + code.ToString() + L"'";
        return texts;
    case 5:
        if (status.TryGetFormattedString(name, text))
            texts.function = L"'" + text + L"'";
        return texts;
    case 0x801:
    case 0x802:
    case 0x804:
        if (status.TryGetInt(name, whole, IntLimits::min(), IntLimits::max()))
            texts.reference = texts.function = DoubleToString(whole);
        else if (status.TryGetUInt(name, natural, 0, std::numeric_limits<unsigned int>::max()))
            texts = {DoubleToString(natural), L"119 Failed to fetch status integer @10"};
        return texts;
    default: return texts;
    }
}

void CheckEither(
    TestCommand& test, const WString& before, const WString& after, const WString& actual, const WString& what)
{
    Assertion::AreEqual(test, actual == before ? before : after, actual, what);
}

/// One item of each type. Its value may change just then.
void TestStatus(TestCommand& test, const Bench& bench)
{
    WStringArray names;
    System::status.GetNames(names);
    for (const int type : {1, 2, 3, 4, 5, 0x801, 0x802, 0x804}) {
        const auto isOfType = [&](const WString& name) { return System::status.GetItemType(name) == type; };
        const auto name = std::find_if(names.begin(), names.end(), isOfType);
        if (name == names.end())
            continue;
        const StatusTexts before = ExpectStatus(*name, type);
        const WString reference = bench.Outcome(L"%S{ " + *name + L" }");
        const WString function = bench.Outcome(L"GetStatus(\"" + *name + L"\", 1/0)");
        const StatusTexts after = ExpectStatus(*name, type);
        CheckEither(test, before.reference, after.reference, reference, L"%S{" + *name + L"}");
        if (!after.function.IsEmpty())
            CheckEither(test, before.function, after.function, function, L"GetStatus(" + *name + L")");
    }
}

constexpr Row missing_lc[] = {
    {"1 + %s{ SelfTest.None }", "48 Missing variable: %S{SelfTest.None} @5"},
    {"IsNA(%S{SelfTest.None})", "TRUE"},
    {"5/GetStatus(\"SelfTest.None\", 0)", "133 Divide by zero @12"},
    {"GetStatus(\"SelfTest.None\", 1/0)", "133 Divide by zero @30"},
    {"GetStatus(\"SelfTest.None\")", "118 Status value not found @10"},
    {"GetStatus(\"a\", \"b\", \"c\")", "117 GetStatus requires 1 or 2 parameters @21"},
    {"GetStatus(5)", "8 Type mismatch @11"},
    {"-%u{SelfTest.None}", "48 Missing variable: %U{SelfTest.None} @2"},
    {"GetUsage(\"SelfTest.None\")", "137 Usage value not found @9"},
    {"5/GetUsage(\"SelfTest.None\", 0)", "133 Divide by zero @11"},
    {"GetUsage(\"a\", 1, 2)", "136 GetUsage requires 1 or 2 parameters @18"},
    {"GetUsage(true)", "8 Type mismatch @10"},
    {"GetEvent(1)", "8 Type mismatch @10"},
    {"FileExist(\"/no/such/file\")", "FALSE"},
    {"Exist(\"/\")", "TRUE"},
    {"1+FileSize(\"/no/such/file\")", "124 File not found @12"},
    {"FileCrc(\"/no/such/file\")", "124 File not found @9"},
    {"FileZynqChecksum(\"/no/such/file\")", "124 File not found @18"},
    {"GetProcId(\"no such command*\")", "-1"},
    {"GetProcId(\"*\", \"no such command line\")", "-1"},
    {"GetProcId(\"*\") > 0", "TRUE"},
    {"IsRunning(\"*\", \"?*\")", "TRUE"},
    {"IsRunning(\"no such command*\")", "FALSE"},
    {"GetProcId(\"a\", \"b\", \"c\")", "25 GetProcId/IsRunning requires 1 or 2 parameters @21"},
    {"IsRunning(\"a\", 1)", "8 Type mismatch @16"},
};

/// Does something at the end of a scope, however that is left.
template <typename Action>
class AtEnd
{
public:
    explicit AtEnd(Action action) : action(action) {}
    ~AtEnd() { action(); }
    AtEnd(const AtEnd&) = delete;
    AtEnd& operator=(const AtEnd&) = delete;

private:
    const Action action;
};

/// A name that no other process uses.
WString OwnName()
{
    return WString::Format(L"SelfTest%d", getpid());
}

void TestUsage(const Bench& bench)
{
    const WString name = OwnName();
    if (!System::usage.Set(name.ToCString(), 73)) // a folder that cannot be written
        return;
    const AtEnd removal([&] { System::usage.TryDelete(name.ToCString()); });
    bench.Check(L"%U{ " + name + L" }+0", L"73");
    bench.Check(L"GetUsage(\"" + name.ToLowerCase() + L"\", 1/0)", L"73");
}

void DeleteEvent(const WString& name) noexcept
try {
    OS9EventManager::TryDelete(name);
} catch (const ExitCode&) { // the table has become unusable
}

void TestEvents(TestCommand& test, const Bench& bench)
try {
    const WString name = OwnName();
    if (!OS9EventManager::TryCreate(name, -5)) // no room
        return;
    const AtEnd removal([&] { DeleteEvent(name); });
    bench.Check(L"GetEvent(\"" + name + L"\")*2", L"-10");
    bench.Check(L"1+GetEvent(\"SelfTest.None\")", L"512 OS9Event not found @11");
    Assertion::AreEqual(test, 0, OS9EventManager::GetReferenceCount(name), L"References to the event");
} catch (const HostException&) { // no shared memory
}

/// A file in memory alone, with a name as long as it is open.
class MemoryFile
{
public:
    explicit MemoryFile(const std::string& contents) : descriptor(memfd_create("SelfTest", MFD_CLOEXEC))
    {
        isWritten = descriptor >= 0 &&
            write(descriptor, contents.data(), contents.size()) == static_cast<ssize_t>(contents.size());
    }
    ~MemoryFile()
    {
        if (descriptor >= 0)
            close(descriptor);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// Empty where there are no such files.
    WString GetName() const { return isWritten ? WString::Format(L"/proc/self/fd/%d", descriptor) : WString(); }

private:
    const int descriptor;
    bool isWritten = false;
};

/// Contents, as the checks name them, with size, CRC and checksum.
void TestFile(Bench& bench, const std::string& contents, const WString& outcome)
{
    const MemoryFile file(contents);
    if (!File::Exists(file.GetName()))
        return;
    bench.Set(L"file", file.GetName());
    bench.Check(L"FileSize(file) & \" \" & FileCrc(file) & \" \" & FileZynqChecksum(file)", L"'" + outcome + L"'");
}

void TestFiles(Bench& bench)
{
    using namespace std::string_literals;
    TestFile(bench, "", L"0 0 4294967295");
    TestFile(bench, "123456789", L"9 3421780262 2476054368");
    TestFile(bench, "\1\0\0\0\2"s, L"5 357351297 4294967292");
    TestFile(bench, "\xFF\xFF\xFF\xFF\2\0\0\0"s, L"8 1442199412 4294967294");
    std::string blocks(8193, '\0'); // two blocks and a byte, of words with two bytes each
    for (std::size_t i = 0; i < blocks.size(); i += 2)
        blocks[i] = static_cast<char>(i % 4 + 1);
    TestFile(bench, blocks, L"8193 3565777096 3892312062");
}

/// A setting of the test's own, in a section that exists, since an empty section would stay in the file.
class OwnSetting
{
public:
    OwnSetting()
    {
        WStringArray sections;
        System::config.GetSections(sections);
        const auto isWord = [](const WString& name) {
            return name.View().find_first_of(L" \t]") == std::wstring::npos;
        };
        if (const auto word = std::find_if(sections.begin(), sections.end(), isWord); word != sections.end())
            section = *word;
    }
    /// What has become known of a setting cannot be removed, but the description says what it is.
    ~OwnSetting()
    {
        Remove();
        System::config.GetMetaData().UpdateStr(section, key, L"of the self-test alone", -1, -1, L"");
    }
    OwnSetting(const OwnSetting&) = delete;
    OwnSetting& operator=(const OwnSetting&) = delete;

    const WString& GetSection() const noexcept { return section; }
    const WString& GetKey() const noexcept { return key; }
    void Set(const WString& value) const { System::config.SetString(section, key, value); }
    void Remove() const { System::config.TryDelete(section, key); }
    void ForgetDefault() const { System::config.GetMetaData().UpdateStr(section, key, nullptr, 0, 0, L""); }
    WString DescribeDefault() const;

private:
    WString section = L"SelfTest";
    const WString key = L"SelfTest";
};

/// The type that is registered for the setting, and the default; of a text the limits of its length too.
WString OwnSetting::DescribeDefault() const
{
    ConfigMetaData::Item item;
    if (!System::config.GetMetaData().TryGet(section, key, item))
        return L"nothing";
    if (item.type == ConfigDataType::Str)
        return WString::Format(L"2 %s, %g to %g characters", item.defaultText, item.min, item.max);
    return WString::Format(L"%d %s", static_cast<int>(item.type), DoubleToString(item.defaultNumber));
}

/// The value of a setting, an expression that reads it, and the outcome.
struct SettingRow
{
    const char* value;
    const char* expression;
    const char* outcome;
};

// Without defaults, which would register the key.
constexpr SettingRow settings_lc[] = {
    {"12", "GetConfig(section, key)", "12"},
    {"4000000000", "Config(section, key)", "4000000000"},
    {"4294967295", "Config(section, key)", "4294967295"},
    {"1e20", "Config(section, key)", "1e20"},
    {"-1e20", "Config(section, key)", "-1e20"},
    {"1.5", "Config(LCase(section), UCase(key))", "1.5"},
    {"True", "Config(section, key)", "'True'"},
    {"2147483647", "GetConfigInt(section, key)", "2147483647"},
    {"-2147483648", "GetConfigInt(section, key)", "-2147483648"},
    {"2147483648", "GetConfigInt(section, key)", "140 Cannot convert config value to requested type @13"},
    {"4294967295", "GetConfigUInt(section, key)", "4294967295"},
    {"0", "GetConfigUInt(section, key)", "0"},
    {"-7", "GetConfigUInt(section, key)", "140 Cannot convert config value to requested type @14"},
    {"1.5", "GetConfigDbl(section, key)", "1.5"},
    {"x", "GetConfigDbl(section, key)", "140 Cannot convert config value to requested type @13"},
    {"12", "GetConfigStr(section, key)", "'12'"},
    {"True", "GetConfigBool(section, key)", "TRUE"},
    {"12", "GetConfigBool(section, key)", "140 Cannot convert config value to requested type @14"},
    {"12", "1+GetConfig(section, \"None\")", "114 Config value not found @12"},
    {"12", "GetConfigBool(section, \"None\")", "114 Config value not found @14"},
    {"12", "Config(section)", "113 GetConfig/Config requires 2 or 3 parameters @8"},
    {"12", "GetConfig(\"S\", \"K\", 1, 2)", "113 GetConfig/Config requires 2 or 3 parameters @24"},
    {"12", "GetConfigInt(\"S\")", "113 GetConfig<type>/Config<type> requires 2 or 3 parameters @14"},
    {"12", "GetConfigStr(\"S\", \"K\", \"x\", 2)", "113 GetConfig<type>/Config<type> requires 2 or 3 parameters @29"},
    {"12", "GetConfig(1, \"K\")", "8 Type mismatch @11"},
    {"12", "GetConfig(section, key, 1/0)", "133 Divide by zero @27"},
    {"12", "GetConfigBool(section, \"None\", 1)", "6 Type mismatch @32"},
    {"12", "GetConfigStr(section, key, 5)", "8 Type mismatch @28"},
    {"12", "GetConfigUInt(section, key, \"x\")", "4 Type mismatch @29"},
};

/// A function and a default, what the call gives where the key is missing, and what it registers.
struct DefaultRow
{
    const char* function;
    const char* defaultValue;
    const char* outcome;
    const char* registered;
};

constexpr DefaultRow defaults_lc[] = {
    {"GetConfig", "1.5", "1.5", "3 1.5"},
    {"GetConfig", "3", "3", "1 3"},
    {"GetConfig", "-2147483648", "-2147483648", "1 -2147483648"},
    {"GetConfig", "-2147483649", "-2147483649", "3 -2147483649"},
    {"GetConfig", "2147483648", "2147483648", "4 2147483648"},
    {"GetConfig", "4294967295", "4294967295", "4 4294967295"},
    {"GetConfig", "4294967296", "4294967296", "3 4294967296"},
    {"Config", "\"xyz\"", "'xyz'", "2 xyz, -1 to 2.14748e+09 characters"},
    {"Config", "1>2", "FALSE", "6 0"},
    {"GetConfigInt", "-7.9", "-7", "1 -7"},
    {"GetConfigInt", "1e300", "2147483647", "1 2147483647"},
    {"GetConfigUInt", "-7", "0", "4 0"},
    {"GetConfigDbl", "\"0x10\"", "16", "3 16"},
    {"GetConfigStr", "\"\"", "''", "2 , -1 to 2.14748e+09 characters"},
    {"GetConfigBool", "true", "TRUE", "6 1"},
};

void TestDefaults(TestCommand& test, const Bench& bench, const OwnSetting& setting)
{
    for (const DefaultRow& row : defaults_lc)
        for (const bool exists : {false, true}) {
            const WString call = WString::Format(
                L"%s(section, key, %s)", WString::FromUtf8(row.function), WString::FromUtf8(row.defaultValue));
            setting.Remove();
            setting.ForgetDefault();
            if (exists)
                setting.Set(L"12");
            const WString outcome = bench.Outcome(call);
            if (!exists)
                Assertion::AreEqual(test, WString::FromUtf8(row.outcome), outcome, call);
            Assertion::AreEqual(
                test, WString::FromUtf8(row.registered), setting.DescribeDefault(), L"What is registered by " + call);
        }
    setting.Set(L"true");
    bench.Check(L"GetConfig(section, key, false)", L"TRUE");
    bench.Check(L"GetConfig(section, key, 1)", L"140 Cannot convert config value to requested type @10");
    setting.Remove();
    bench.Check(L"5/GetConfig(section, key, 0)", L"133 Divide by zero @12");
}

void TestConfigReferences(const Bench& bench, const OwnSetting& setting)
{
    const WString blank = L" ";
    const WString& section = setting.GetSection();
    const WString& key = setting.GetKey();
    setting.Set(L"12");
    bench.Check(L"%C{[ " + section + L" ] " + key + L" }+0", L"12");
    bench.Check(L"%c{ " + section.ToLowerCase() + L"\t" + key + L"}*2", L"24");
    bench.Check(L"-%C{[" + section + L"]None}", L"48 Missing variable: %C{[" + section + L"]None} @2");
    bench.Check(L"%C{[" + section + L"]}", L"48 %C{[" + section + L"]} @1");
    setting.Set(L"TRUE");
    bench.Check(L"%C{" + section + blank + key + L"}", L"TRUE");
    setting.Set(L"12 apples");
    bench.Check(L"%C{" + section + blank + key + L"}", L"'12 apples'");
}

/// A function for a type that no function of the table has.
void TestUnsupportedType(TestCommand& test, const OwnSetting& setting)
{
    EEGetConfigType function(L"unsupported", -1, static_cast<ConfigDataType>(5));
    const auto call = [&](bool withDefault) {
        EETokenStack arguments;
        EEToken text;
        for (const WString& each : {setting.GetSection(), setting.GetKey()}) {
            text.SetValue(each);
            arguments.Put(text);
        }
        if (withDefault)
            arguments.Put(text);
        return SelfTest::ThrownBy([&] { function.Evaluate(text, arguments); });
    };
    constexpr const wchar_t* unsupported = L"139 GetConfig[<type>], unsupported type @-1";
    setting.Remove();
    Assertion::AreEqual(test, unsupported, call(true), L"A default of an unsupported type");
    setting.Set(L"12");
    Assertion::AreEqual(test, unsupported, call(true), L"A key with a default of an unsupported type");
    Assertion::AreEqual(test, unsupported, call(false), L"A key of an unsupported type");
}

void TestConfig(TestCommand& test, Bench& bench)
{
    const OwnSetting setting;
    bench.Set(L"section", setting.GetSection());
    bench.Set(L"key", setting.GetKey());
    for (const SettingRow& row : settings_lc) {
        setting.Set(WString::FromUtf8(row.value));
        bench.Check(WString::FromUtf8(row.expression), WString::FromUtf8(row.outcome));
    }
    TestConfigReferences(bench, setting);
    TestDefaults(test, bench, setting);
    TestUnsupportedType(test, setting);
}
} // namespace

void SelfTest::TestInstrument(TestCommand& test)
{
    Bench bench(test);
    TestEnvironment(bench);
    TestStatus(test, bench);
    bench.Check(missing_lc);
    TestUsage(bench);
    TestEvents(test, bench);
    TestFiles(bench);
    TestConfig(test, bench);
}
