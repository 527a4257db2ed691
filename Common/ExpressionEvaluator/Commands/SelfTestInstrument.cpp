// References and functions that look at the instrument. Status items cannot be taken back once they are made, so those
// that are there are read, whatever they are; everything else is made for the test under names of its own and removed.

#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "NumberFormat.h"
#include "SelfTestParts.h"
#include "Services/File.h"

#include <algorithm>
#include <limits>
#include <sys/mman.h>
#include <unistd.h>

namespace {
using SelfTest::Row;
using IntLimits = std::numeric_limits<int>;

constexpr wchar_t nameCharacters_lc[] = L"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_.";

/// Evaluates with an environment of its own.
class Bench
{
public:
    explicit Bench(TestCommand& test) : test(test) {}

    void Set(const WString& name, const WString& value) { environment.SetString(name, value); }
    WString Outcome(const WString& expression) const
    {
        ExpressionEvaluator evaluator(true, environment, nullptr, nameCharacters_lc, 0);
        return SelfTest::Outcome(evaluator, expression);
    }
    void Check(const WString& expression, const WString& outcome) const
    {
        Assertion::AreEqual(test, outcome, Outcome(expression), expression);
    }
    void Check(std::span<const Row> rows) const
    {
        for (const Row& row : rows)
            Check(row.input, row.outcome);
    }

private:
    TestCommand& test;
    Environment environment;
};

constexpr Row environment_lc[] = {
    {L"count+1", L"8.5"},
    {L"abs(COUNT)", L"7.5"},
    {L"%E{ count } * 2", L"15"},
    {L"%e{Truth}", L"TRUE"},
    {L"truth", L"TRUE"},
    {L"word", L"'7 apples'"},
    {L"hex", L"'0x10'"},
    {L"pi", L"3"},
    {L"%E{none}", L"48 %E{none} @1"},
    {L"1+%E{none}", L"48 Missing variable: %E{none} @3"},
    {L"none+1", L"48 Missing variable: none @1"},
    {L"GetEnv(\"count\", 1/0)", L"7.5"},
    {L"GetEnv(\"Truth\", 0)", L"TRUE"},
    {L"GetEnv(\"word\", 0)", L"'7 apples'"},
    {L"5/GetEnv(\"none\", 0)", L"133 Divide by zero @9"},
    {L"GetEnv(\"none\", 1/0)", L"133 Divide by zero @18"},
    {L"GetEnv(1, 2)", L"8 Type mismatch @8"},
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
    {L"1 + %s{ SelfTest.None }", L"48 Missing variable: %S{SelfTest.None} @5"},
    {L"IsNA(%S{SelfTest.None})", L"TRUE"},
    {L"5/GetStatus(\"SelfTest.None\", 0)", L"133 Divide by zero @12"},
    {L"GetStatus(\"SelfTest.None\", 1/0)", L"133 Divide by zero @30"},
    {L"GetStatus(\"SelfTest.None\")", L"118 Status value not found @10"},
    {L"GetStatus(\"a\", \"b\", \"c\")", L"117 GetStatus requires 1 or 2 parameters @21"},
    {L"GetStatus(5)", L"8 Type mismatch @11"},
    {L"-%u{SelfTest.None}", L"48 Missing variable: %U{SelfTest.None} @2"},
    {L"GetUsage(\"SelfTest.None\")", L"137 Usage value not found @9"},
    {L"5/GetUsage(\"SelfTest.None\", 0)", L"133 Divide by zero @11"},
    {L"GetUsage(\"a\", 1, 2)", L"136 GetUsage requires 1 or 2 parameters @18"},
    {L"GetUsage(true)", L"8 Type mismatch @10"},
    {L"1+GetEvent(\"SelfTest.None\")", L"512 OS9Event not found @11"},
    {L"GetEvent(1)", L"8 Type mismatch @10"},
    {L"FileExist(\"/no/such/file\")", L"FALSE"},
    {L"Exist(\"/\")", L"TRUE"},
    {L"1+FileSize(\"/no/such/file\")", L"124 File not found @12"},
    {L"FileCrc(\"/no/such/file\")", L"124 File not found @9"},
    {L"FileZynqChecksum(\"/no/such/file\")", L"124 File not found @18"},
    {L"GetProcId(\"no such command*\")", L"-1"},
    {L"GetProcId(\"*\", \"no such command line\")", L"-1"},
    {L"GetProcId(\"*\") > 0", L"TRUE"},
    {L"IsRunning(\"*\", \"?*\")", L"TRUE"},
    {L"IsRunning(\"no such command*\")", L"FALSE"},
    {L"GetProcId(\"a\", \"b\", \"c\")", L"25 GetProcId/IsRunning requires 1 or 2 parameters @21"},
    {L"IsRunning(\"a\", 1)", L"8 Type mismatch @16"},
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

void TestEvents(TestCommand& test, const Bench& bench)
{
    const WString name = OwnName();
    if (!OS9EventManager::TryCreate(name, -5)) // no shared memory, or no room in it
        return;
    const AtEnd removal([&] { OS9EventManager::TryDelete(name); });
    bench.Check(L"GetEvent(\"" + name + L"\")*2", L"-10");
    Assertion::AreEqual(test, 0, OS9EventManager::GetReferenceCount(name), L"References to the event");
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

constexpr wchar_t section_lc[] = L"SelfTest";
constexpr wchar_t key_lc[] = L"Value";

/// The type that is registered for the setting, and the default.
WString DescribeDefault()
{
    ConfigMetaData::Item item;
    if (!System::config.GetMetaData().TryGet(section_lc, key_lc, item))
        return L"nothing";
    const bool isText = item.type == ConfigDataType::Str;
    return WString::Format(
        L"%d %s", static_cast<int>(item.type), isText ? item.defaultText : DoubleToString(item.defaultNumber));
}

/// The value of a setting, an expression that reads it, and the outcome.
struct SettingRow
{
    const wchar_t* value;
    const wchar_t* expression;
    const wchar_t* outcome;
};

// Without defaults, which would register the key.
constexpr SettingRow settings_lc[] = {
    {L"12", L"%C{[ SelfTest ] Value}+0", L"12"},
    {L"12", L"%c{selftest value}", L"12"},
    {L"TRUE", L"%C{SelfTest Value}", L"TRUE"},
    {L"12 apples", L"%C{SelfTest\tValue}", L"'12 apples'"},
    {L"12", L"GetConfig(\"SelfTest\", \"Value\")", L"12"},
    {L"4000000000", L"Config(\"SelfTest\", \"Value\")", L"4000000000"},
    {L"4294967295", L"Config(\"SelfTest\", \"Value\")", L"4294967295"},
    {L"1e20", L"Config(\"SelfTest\", \"Value\")", L"1e20"},
    {L"-1e20", L"Config(\"SelfTest\", \"Value\")", L"-1e20"},
    {L"1.5", L"Config(\"selftest\", \"VALUE\")", L"1.5"},
    {L"True", L"Config(\"SelfTest\", \"Value\")", L"'True'"},
    {L"2147483647", L"GetConfigInt(\"SelfTest\", \"Value\")", L"2147483647"},
    {L"-2147483648", L"GetConfigInt(\"SelfTest\", \"Value\")", L"-2147483648"},
    {L"2147483648", L"GetConfigInt(\"SelfTest\", \"Value\")", L"140 Cannot convert config value to requested type @13"},
    {L"4294967295", L"GetConfigUInt(\"SelfTest\", \"Value\")", L"4294967295"},
    {L"-7", L"GetConfigUInt(\"SelfTest\", \"Value\")", L"140 Cannot convert config value to requested type @14"},
    {L"1.5", L"GetConfigDbl(\"SelfTest\", \"Value\")", L"1.5"},
    {L"x", L"GetConfigDbl(\"SelfTest\", \"Value\")", L"140 Cannot convert config value to requested type @13"},
    {L"12", L"GetConfigStr(\"SelfTest\", \"Value\")", L"'12'"},
    {L"True", L"GetConfigBool(\"SelfTest\", \"Value\")", L"TRUE"},
    {L"12", L"GetConfigBool(\"SelfTest\", \"Value\")", L"140 Cannot convert config value to requested type @14"},
    {L"12", L"-%C{[SelfTest]None}", L"48 Missing variable: %C{[SelfTest]None} @2"},
    {L"12", L"%C{[SelfTest]}", L"48 %C{[SelfTest]} @1"},
    {L"12", L"1+GetConfig(\"SelfTest\", \"None\")", L"114 Config value not found @12"},
    {L"12", L"GetConfigBool(\"SelfTest\", \"None\")", L"114 Config value not found @14"},
    {L"12", L"Config(\"SelfTest\")", L"113 GetConfig/Config requires 2 or 3 parameters @8"},
    {L"12", L"GetConfig(\"S\", \"K\", 1, 2)", L"113 GetConfig/Config requires 2 or 3 parameters @24"},
    {L"12", L"GetConfigInt(\"S\")", L"113 GetConfig<type>/Config<type> requires 2 or 3 parameters @14"},
    {L"12", L"GetConfigStr(\"S\", \"K\", \"x\", 2)",
        L"113 GetConfig<type>/Config<type> requires 2 or 3 parameters @29"},
    {L"12", L"GetConfig(1, \"K\")", L"8 Type mismatch @11"},
    {L"12", L"GetConfig(\"SelfTest\", \"Value\", 1/0)", L"133 Divide by zero @34"},
    {L"12", L"GetConfigBool(\"SelfTest\", \"None\", 1)", L"6 Type mismatch @35"},
    {L"12", L"GetConfigStr(\"SelfTest\", \"Value\", 5)", L"8 Type mismatch @35"},
    {L"12", L"GetConfigUInt(\"SelfTest\", \"Value\", \"x\")", L"4 Type mismatch @36"},
};

/// A function and a default, what the call gives where the key is missing, and what it registers.
struct DefaultRow
{
    const wchar_t* function;
    const wchar_t* defaultValue;
    const wchar_t* outcome;
    const wchar_t* registered;
};

constexpr DefaultRow defaults_lc[] = {
    {L"GetConfig", L"1.5", L"1.5", L"3 1.5"},
    {L"GetConfig", L"3", L"3", L"1 3"},
    {L"GetConfig", L"-2147483648", L"-2147483648", L"1 -2147483648"},
    {L"GetConfig", L"-2147483649", L"-2147483649", L"3 -2147483649"},
    {L"GetConfig", L"2147483648", L"2147483648", L"4 2147483648"},
    {L"GetConfig", L"4294967295", L"4294967295", L"4 4294967295"},
    {L"GetConfig", L"4294967296", L"4294967296", L"3 4294967296"},
    {L"Config", L"\"xyz\"", L"'xyz'", L"2 xyz"},
    {L"Config", L"1>2", L"FALSE", L"6 0"},
    {L"GetConfigInt", L"-7.9", L"-7", L"1 -7"},
    {L"GetConfigInt", L"1e300", L"2147483647", L"1 2147483647"},
    {L"GetConfigUInt", L"-7", L"0", L"4 0"},
    {L"GetConfigDbl", L"\"0x10\"", L"16", L"3 16"},
    {L"GetConfigStr", L"\"\"", L"''", L"2 "},
    {L"GetConfigBool", L"true", L"TRUE", L"6 1"},
};

void TestDefaults(TestCommand& test, const Bench& bench)
{
    for (const DefaultRow& row : defaults_lc)
        for (const bool exists : {false, true}) {
            const WString call = WString::Format(L"%s(\"SelfTest\", \"Value\", %s)", row.function, row.defaultValue);
            System::config.TryDelete(section_lc, key_lc);
            System::config.GetMetaData().UpdateStr(section_lc, key_lc, nullptr, 0, 0, L"");
            if (exists)
                System::config.SetString(section_lc, key_lc, L"12");
            const WString outcome = bench.Outcome(call);
            if (!exists)
                Assertion::AreEqual(test, row.outcome, outcome, call);
            Assertion::AreEqual(test, row.registered, DescribeDefault(), L"What is registered by " + call);
        }
    System::config.SetString(section_lc, key_lc, L"true");
    bench.Check(L"GetConfig(\"SelfTest\", \"Value\", false)", L"TRUE");
    bench.Check(L"GetConfig(\"SelfTest\", \"Value\", 1)", L"140 Cannot convert config value to requested type @10");
    System::config.TryDelete(section_lc, key_lc);
    bench.Check(L"5/GetConfig(\"SelfTest\", \"Value\", 0)", L"133 Divide by zero @12");
}

void TestConfig(TestCommand& test, const Bench& bench)
{
    // What has become known of a setting cannot be removed.
    const AtEnd removal([] {
        System::config.TryDelete(section_lc, key_lc);
        System::config.GetMetaData().UpdateStr(section_lc, key_lc, L"used by the self-test alone", -1, -1, L"");
    });
    for (const SettingRow& row : settings_lc) {
        System::config.SetString(section_lc, key_lc, row.value);
        bench.Check(row.expression, row.outcome);
    }
    TestDefaults(test, bench);
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
