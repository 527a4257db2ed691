// What the plug-in brings along: its help and usage texts, and its registry.

#include "AssertCommand.h"
#include "Calc.h"
#include "Commands/CommandRegistry.h"
#include "Commands/CommandRunner.h"
#include "Commands/EmbeddedResource.h"
#include "Commands/PluginLoader.h"
#include "DllRegistryUtils.h"
#include "ExpressionEvaluatorFunctions.h"
#include "If.h"
#include "SelfTest.h"
#include "SelfTestParts.h"
#include "SetCommand.h"
#include "While.h"

#include <cerrno>
#include <memory>

namespace {
/// The outcome as the help texts show it: the value's text, or "Error: " and the message.
WString Shown(const WString& expression)
{
    ExpressionEvaluator evaluator(nullptr, 0);
    EEToken value;
    if (evaluator.TryEvaluate(expression, value))
        return value.ToString();
    ExitCode code;
    WString message;
    evaluator.TryGetErrorMessage(code, message, nullptr);
    return L"Error: " + message;
}

/// A line "expression -> outcome" is true, and a line that begins with a name and "(" describes a function. The
/// examples of the configuration functions are left out: their defaults would be registered for good.
void CheckHelpLine(TestCommand& test, const WString& line)
{
    const WString arrow = L" -> ";
    const int at = line.IndexOf(arrow);
    if (at > 0 && line.IndexOf(L"Config") < 0)
        Assertion::AreEqual(test, line.Substring(static_cast<unsigned int>(at) + 4),
            Shown(line.Left(static_cast<unsigned int>(at))), line);
    const int bracket = line.IndexOf(L"(");
    if (bracket > 0 && line.IndexOf(L" ") != 0) {
        const WString name = line.Left(static_cast<unsigned int>(bracket));
        Assertion::IsTrue(test, fnTable_gb.FindOrNull(name.View()) != nullptr || name.IndexOf(L" ") > 0,
            L"The help describes " + name + L", which is no function");
    }
}

/// The texts are whole: with a carriage return and a line feed behind each line, the last one of HELP.TXT excepted,
/// they are as long as their files.
void TestHelpTexts(TestCommand& test)
{
    struct
    {
        const wchar_t* name;
        int size;
        int openLines;
    } const texts[] = {{L"HELP.TXT", HELP_SIZE, 1}, {L"FUNCTIONS.TXT", FUNCTIONS_SIZE, 0}};
    WString expected;
    for (const auto& text : texts) {
        int size = -2 * text.openLines;
        const WString indent = text.openLines == 0 ? L" " : L"";
        for (EmbeddedResource resource(L"Calc", text.name); !resource.EndOfFile();) {
            const WString line = resource.ReadLine();
            size += static_cast<int>(line.Length()) + 2;
            CheckHelpLine(test, line);
            expected += indent + line + L"\n";
        }
        if (text.openLines != 0)
            expected += L"\nExpression evaluator functions:\n";
        Assertion::AreEqual(test, text.size, size, WString(L"Size of ") + text.name);
    }
    const std::string& ownFile = CommandRegistry::FindOrNull(L"Calc")->file;
    for (const std::string& file : PluginLoader::GetFiles())
        for (EmbeddedResource others(file, L"FUNCTIONS.TXT"); file != ownFile && !others.EndOfFile();)
            expected += L" " + others.ReadLine() + L"\n";
    expected += L"Expression evaulator operators:\n and, or, xor, =, >, <, <>, >=, <=, +, -, &, *, /, ^\n";
    for (const wchar_t* line : {L"Calc -help", L"Calc -h"}) {
        WStringArray lines;
        test.Run(line, lines);
        WString written;
        for (const WString& each : lines)
            written += each + L"\n";
        Assertion::IsTrue(test, written == expected, WString(line) + L" writes something else than the texts");
    }
}

/// A command, and of its usage the counts of lines and characters before the functions, and their title.
struct CommandRecord
{
    CommandBase* (*factory)();
    const wchar_t* name;
    unsigned int id;
    const wchar_t* usage;
};

constexpr CommandRecord commands_lc[] = {
    {CreateCommandAssertCommand, L"Assert", 9015, L"18 760 Supported functions:"},
    {CreateCommandCalc, L"Calc", 1043, L"23 1001 Supported functions:"},
    {CreateCommandIf, L"If", 1042, L"21 1039 Supported functions in the condition:"},
    {CreateCommandSetCommand, L"Set", 1045, L"15 715 Supported functions in the expression:"},
    {CreateCommandWhile, L"While", 1064, L"45 2011 Supported functions in the condition:"},
};

/// As CommandRecord has it: other plug-ins may add to the functions.
WString MeasureUsage(const wchar_t* command)
{
    ArrayPipe pipe;
    CommandRunner::ShowUsage(*CommandRegistry::FindOrNull(command), pipe);
    std::size_t lines = 0;
    std::size_t characters = 0;
    for (const WString& line : pipe.lines) {
        if (line.StartsWith(L"Supported functions", false))
            return WString::Format(
                L"%u %u %s", static_cast<unsigned int>(lines), static_cast<unsigned int>(characters), line);
        ++lines;
        characters += line.Length();
    }
    return L"without functions";
}

void TestCommandRecords(TestCommand& test)
{
    for (const CommandRecord& record : commands_lc) {
        const std::unique_ptr<CommandBase> command(record.factory());
        Assertion::AreEqual(test, record.name, command->GetName(), L"Name of a command");
        Assertion::AreEqual(test, record.id, command->GetCommandId(), record.name);
        Assertion::AreEqual(test, 0xC0000040u, command->GetFlags(), record.name);
        Assertion::AreEqual(
            test, L"Fri Sep  8 16:51:25 2023", WString::FromUtf8(command->GetSourceCodeTimestamp()), record.name);
        Assertion::AreEqual(test, record.usage, MeasureUsage(record.name), WString(L"Usage of ") + record.name);
    }
}

/// The general help: the names in order, each line as full as it may be; the references last.
void TestGeneralHelp(TestCommand& test)
{
    WStringArray names;
    ExpressionEvaluator::GetSupportedFunctions(names);
    for (const bool environment : {false, true}) {
        ArrayPipe pipe;
        ExpressionEvaluator::DisplaySupportedOperatorsAndFunctionsHelpText(pipe, environment, L"Operators %s", L"%%");
        WString expected = L"Operators %s\n and, or, xor, =, >, <, <>, >=, <=, +, -, &, *, /, ^\n%\n";
        WString line;
        for (const WString& name : names) {
            if (line.Length() + name.Length() > 75) {
                expected += L" " + line + L"\n";
                line.Clear();
            }
            line.AppendWithSeparator(name, L", ");
        }
        expected += L" " + line + L"\n";
        expected +=
            L"Run: \"CALC -help\" for a description of the expression evaluator and\n the supported functions.\n"
            L"To fetch different instrument information use:\n %S{statusItem}     - to fetch a status value.\n"
            L" %C{[section]key}   - to fetch a configuration file value.\n"
            L" %U{usageItem}      - to fetch a usage log value.\n";
        if (environment)
            expected += L" %E{variableName}   - to fetch an environment variable value.\n"
                        L" variableName       - to fetch an environment variable value.\n";
        WString written;
        for (const WString& each : pipe.lines)
            written += each + L"\n";
        Assertion::AreEqual(test, expected, written, L"General help");
    }
}

/// The names and ids that the registry offers.
WString Offered()
{
    WString offered;
    for (unsigned int index = 0; const auto factory = DllRegistryGetNextCommand(index); ++index)
        offered.AppendWithSeparator(std::unique_ptr<CommandBase>(factory())->GetName(), L" ");
    AutomaticTestEntry entry;
    for (int index = -1; index < 3; ++index)
        if (DllRegistryTryGetNextAutomaticTest(index, entry))
            offered.AppendFormat(L"; %d %s, %s, %u", index, entry.name, entry.title, entry.kind);
    return offered;
}

/// Ends with this plug-in selected, as the host has left it.
void TestRegistry(TestCommand& test)
{
    constexpr const wchar_t* all = L"Assert Calc If Set While; 0 ExpressionEvaluator, Expression evaluator, 1";
    const std::string own = GetDllName(reinterpret_cast<void*>(&RunExpressionEvaluatorTests));
    Assertion::IsTrue(test, DllRegistrySelectDll("no such file") == 0 && Offered().IsEmpty(), L"Another file selected");
    errno = ENOENT;
    Assertion::IsTrue(test, GetDllName(reinterpret_cast<void*>(16)).empty(), L"An address of no file");
    Assertion::AreEqual(test, ENOENT, DllRegistrySelectDll("no such file"), L"The failed look-up is reported");
    for (const std::string& path : {"/elsewhere/" + own, own}) {
        Assertion::AreEqual(test, 0, DllRegistrySelectDll(path.c_str()), L"Selection of this file");
        Assertion::AreEqual(test, all, Offered(), L"What this file offers");
    }
    DllRegistrySelectDllForTests("a/" + own);
    Assertion::AreEqual(test, L"Assert Calc If Set While", Offered(), L"Tests are selected by the bare name");
    DllRegistrySelectDllForTests(own);
    Assertion::AreEqual(test, all, Offered(), L"Tests selected");
}
} // namespace

void SelfTest::TestPlugin(TestCommand& test)
{
    TestHelpTexts(test);
    TestCommandRecords(test);
    TestGeneralHelp(test);
    TestRegistry(test);
}
