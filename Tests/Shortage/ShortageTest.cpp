#include "Shortage.h"
#include "BuiltIns/BuiltIns.h"
#include "Commands/CommandRunner.h"
#include "Commands/PluginLoader.h"
#include "Commands/TestCommand.h"
#include "Instrument/System.h"
#include "Services/ObjectCounters.h"
#include "Support/Expressions.h"
#include "Support/HostTexts.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {
struct Line
{
    const char* text;
    bool passesOver = false; // a failure of what it runs or reads, so that it may succeed with something else
};

// Each ends and writes in the same way every time.
constexpr Line lines_lc[] = {
    // The plug-in's commands
    {"Calc"},
    {"Calc -h"},
    {"Calc 1+"},
    {"Calc -q 1/0"},
    {"Calc -x 1"},
    {"Calc -v a_rather_long_name_of_no_variable"},
    {"Calc -v \"a long text as the value of an expression\""},
    {"Assert 1=1"},
    {"Assert -q -c2 2=1"},
    {"Assert Max(1,2)=1"},
    {"If 1=1 Then Calc \"the first of the two commands\" Else Calc 2", true},
    {"If -q nothing Then Calc 1 Else Calc \"the second of the two commands\"", true},
    {"Set a_variable_with_a_long_name=\"a text of more than fifteen characters\""},
    {"Set a_variable_with_a_long_name"},
    {"Set a_variable_*"},
    {"Set no_variable_of_that_long_name"},
    {"While 1=2 Do Calc 1"},
    {"While 1=1 Do Calc 1;Calc 2;AssertFail * Calc 1", true},
    // The script tools'
    {"Check %E{folder}/Faulty.txt"},
    {"Check -json %E{folder}/Faulty.txt a_variable=1"},
    {"Check %E{folder}/no_such_script.txt"},
    // The shell's
    {"AssertFail 1043:505:133 Calc -q 1/0"},
    {"AssertFail 1043:* Calc -q 1", true},
    {"Config"},
    {"Config -doc"},
    {"Config -n [Section]with_a_long_name_of_a_key=\"a value with blanks in it\""},
    {"Config [Section]with_a_long_name_of_a_key"},
    {"Config *a_long*"},
    {"If 1=1 Then Config -n [Made]and_deleted=1;Config -z [Made]and_deleted", true},
    {"Echo \"a text with   blanks\" %S{VersionProductName} %E{a_variable_with_a_long_name}"},
    {"Echo %U{a reference to nothing}"},
    {"Echo \"no closing quote"},
    {"Echo -f%E{folder}/Echo.txt \"a text of more than fifteen characters\""},
    {"Event"},
    {"Event shortage_no_such_event"},
    {"If 1=1 Then Event made_and_deleted=1;Event;Event -z made_and_deleted", true},
    {"Exit"},
    {"Help"},
    {"Help Calc"},
    {"Help Max"},
    {"Help 0:1:4"},
    {"Help V*"},
    {"Help nothing_of_that_name"},
    {"Log -n3"},
    {"Log -e ErrorLog"},
    {"Log -c EELog"},
    {"Plugins", true},
    {"Run no_such_script.txt"},
    {"Run %E{folder}/Script.txt"},
    {"Stats 1,2,4"},
    {"Status V*"},
    {"Status -json V*"},
    {"Status VersionProductName=\"a product with a long name\""},
    {"Status no_item_of_that_name"},
    {"Status -d1 VersionProductName=\"a product with a long name\""},
    {"If 1=1 Then Status -n MadeAndDeleted=1;Status -z MadeAndDeleted", true},
    {"Test no_test_of_that_name"},
    {"Test -junit%E{folder}/Report.xml Small"},
    {"Usage"},
    {"Usage a_counter_with_a_long_name=17"},
    {"Usage a_counter_with_a_long_name"},
    {"If 1=1 Then Usage made_and_deleted=1;Usage -z made_and_deleted", true},
    {"Wait 0"},
    {"Watch -hist -w0 -c3 1", true},
    {"No_command_of_that_name x"},
    {""},
};

// With Calc each.
constexpr const char* expressions_lc[] = {
    "1+2*3-4/5^2",
    "-(1+2)*-3",
    "((((1))))",
    "\"a text of more than fifteen characters\"",
    "\"a text\" & \" and another that makes it long\"",
    "\"a text\" = \"another text of some length\"",
    "1 < 2 and not(2 < 1) or true xor false",
    "PI*e",
    "Abs(-1)+Sqr(4)+Sin(0)+Log(10)",
    "Max(1,2,3,4,5,6,7,8,9,10)",
    "Min(Max(1,2),Max(3,4),Max(5,6))",
    "Sum(1,2,3)",
    "Avg(1,2,3)",
    "Median(3,1,2)",
    "Round(2.567,1)",
    "Int(2.5)",
    "Mod(7,3)",
    "If(1=1,\"the first of the two values\",\"the second one\")",
    "InitIfNa(no_variable,\"the value in its place\")",
    "IsErr(1/0)",
    "Len(\"a text of more than fifteen characters\")",
    "Left(\"a text of more than fifteen characters\",20)",
    "Right(\"a text of more than fifteen characters\",20)",
    "Mid(\"a text of more than fifteen characters\",2,20)",
    "IndexOf(\"a text of more than fifteen characters\",\"than fifteen characters\")",
    "IndexOf(\"a text of more than fifteen characters\",\"a text of more than thirty-two characters\")",
    "StartsWith(\"a text of more than fifteen characters\",\"A TEXT OF MORE THAN\")",
    "EndsWith(\"a text of more than fifteen characters\",\"FIFTEEN CHARACTERS\")",
    "UCase(\"a text of more than fifteen characters\")",
    "LCase(\"A TEXT OF MORE THAN FIFTEEN CHARACTERS\")",
    "CStr(123456789012345)",
    "StrCat(\"a text of more than\",15,true,\"characters\")",
    "StrReplace(\"a text of more than fifteen characters\",\"fifteen\",\"a hundred\")",
    "Val(\"0x12345678\")",
    "ToHex(305419896,8)",
    "FromHex(\"12345678\")",
    "ListLen(\"one,two,three,four,five,six\")",
    "ListItem(\"one,two,an item of more than fifteen characters\",3)",
    "IsInList(\"four\",\"one,two,three,four,five,six\")",
    "Matches(\"a text of more than fifteen characters\",\"*t?xt*fifteen*\")",
    "Matches(\"a text of more than fifteen characters\",\"*a piece of more than thirty-two characters*\")",
    "VersionCompare(\"1.2.3.4\",\"1.2.10\")",
    "Ftoa(12345.678,2)",
    "GetProcId(\"no process has this name\")",
    "IsRunning(\"no process has this name\")",
    "FileExist(\"/no/such/file/with/a/long/name\")",
    "FileSize(\"/no/such/file/with/a/long/name\")",
    "FileCrc(\"/proc/self/no_such_file\")",
    "GetConfig(\"Section\",\"another_long_name_of_a_key\",\"a default value of some length\")",
    "GetConfigBool(\"Section\",\"a_flag_with_a_long_name\",true)",
    "GetConfigInt(\"Section\",\"a_number_with_a_long_name\",17)",
    "GetConfigDbl(\"Section\",\"a_double_with_a_long_name\",2.5)",
    "GetStatus(\"VersionProductName\")",
    "GetStatus(\"an_item_that_does_not_exist\",\"a default value of some length\")",
    "GetEvent(\"shortage_no_such_event\")",
    "%S{VersionProductName}",
    "%C{Section another_long_name_of_a_key}",
    "%U{a_counter_with_a_long_name}",
    "%E{a_variable_with_a_long_name}",
    "a_variable_with_a_long_name",
    "no_variable_of_that_long_name+1",
    "NoFunctionOfThatName(1)",
    "Max(1,",
    "1 2",
    "\"no closing quote",
    "1/0",
    "Sqr(-1)",
    "Left(1/0,\"x\")",
    "Mid(\"a text of more than fifteen characters\",99)",
    "VersionCompare(\"no version at all, only a text\",\"1\")",
    "DateToDays(20240229)",
    "Lab.Half(3)",
};

// With the evaluator's log and the trace of variables.
constexpr const char* loggedExpressions_lc[] = {
    "-(1+2)*3",
    "If(1=1,\"the first of the two values\",Max(1,2))",
    "\"a text of more than fifteen characters\" & a_variable_with_a_long_name",
    "%S{VersionProductName} & %C{Section another_long_name_of_a_key}",
    "Len(\"a text\") + %U{a_counter_with_a_long_name}",
    "Left(1/0,2)",
};

std::vector<int> CountObjects()
{
    std::vector<int> counts;
    for (const DebugObjectCount& counter : GetDebugObjectCounts())
        counts.push_back(counter.read());
    return counts;
}

class ShortageTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        setenv("LABSH_EVENTS", events.c_str(), 1);
        for (const char* file : {"Config.ini", "Status.ini", "ErrorLog.txt"})
            GetFolder().Write(file, "");
        GetFolder().Write("Script.txt", "# of two commands\nCalc 1\nCalc 2\n");
        GetFolder().Write("Faulty.txt", "Set a_variable=1/0\nCalk a_variable\n");
        std::filesystem::create_directory(GetFolder().Path("EELog.txt")); // makes the lines, but writes none
        System::Start(GetFolder().GetPath(), GetFolder().GetPath());
        System::status.TryAdd(L"VersionProductName", ST_String, L"OrvaneX9");
        AddBuiltIns();
        for (const char* file : {PLUGIN_FILE, FUNCTIONS_ONLY_FILE, SCRIPT_TOOLS_FILE})
            PluginLoader::Load(file);
        CommandRegistry::AddTest({L"Small", L"A test", 1, [](TestCommand& test) {
                                      WStringArray output;
                                      const WString code = test.Run(L"Calc 1+1", output).ToString();
                                      Assertion::AreEqual(test, L"0:0:0", code, L"the end of a sum of numbers");
                                  }});
    }
    static void TearDownTestSuite() { shm_unlink(("/" + events).c_str()); }
    /// There until the end of the process, which may write to it as long.
    static const TemporaryFolder& GetFolder()
    {
        static const TemporaryFolder folder;
        return folder;
    }

    struct Result
    {
        std::string text; // what was given or written, and how it ended
        bool failed;
    };

    /// Runs the line with that allocation failing, if any.
    Result Run(const WString& line, unsigned int first, bool lasting)
    {
        ArrayPipe pipe;
        CommandRunner::Outcome outcome;
        {
            const Shortage shortage(first, lasting);
            outcome = CommandRunner::Run(line, pipe, environment, 0);
        }
        return {Join(pipe.lines) + "\n" + outcome.code.ToString().ToUtf8() + " " + outcome.message.ToUtf8(),
            outcome.code.IsError()};
    }

    static Result Evaluate(const WString& expression, unsigned int first, bool lasting, unsigned int flags = 0)
    {
        ExpressionEvaluator evaluator(nullptr, flags);
        EEToken value;
        bool succeeded = false;
        {
            const Shortage shortage(first, lasting);
            succeeded = evaluator.TryEvaluate(expression, value);
        }
        return {(succeeded ? DescribeValue(value) : DescribeError(evaluator)) + evaluator.GetVariableTrace().ToUtf8(),
            !succeeded};
    }
    static Result EvaluateLogged(const WString& expression, unsigned int first, bool lasting)
    {
        return Evaluate(expression, first, lasting, EvaluatorFlags::traceVariables);
    }

    /// Every allocation of a run fails once, alone and with all behind it. Each of these runs ends as it does with
    /// enough memory or with an error, and the next one is as good as ever.
    template <typename Runner>
    void Starve(const Line& row, const Runner& run)
    {
        SCOPED_TRACE(row.text);
        const WString line = WString::FromUtf8(row.text);
        run(line, 0, false); // makes what stays, such as a log file
        const Result fed = run(line, 0, false);
        const std::vector<int> objects = CountObjects();
        for (const bool lasting : {false, true}) {
            bool hasStruck = true;
            for (unsigned int first = 1; hasStruck; first += 1 + first / 400) {
                std::string wrong;
                const auto starve = [&] {
                    const Result starved = run(line, first, lasting);
                    hasStruck = Shortage::HasStruck();
                    if (!starved.failed && !row.passesOver && starved.text != fed.text)
                        wrong = starved.text;
                    else if (const Result next = run(line, 0, false); next.text != fed.text)
                        wrong = next.text;
                };
                ASSERT_TRUE(Leaves(starve)) << "memory is lost at " << first;
                ASSERT_EQ(wrong, "") << first;
                ASSERT_EQ(CountObjects(), objects) << first;
            }
        }
    }

    /// Whether a run leaves as many blocks of memory as it finds: what is merely kept for the next run does not grow
    /// with each.
    template <typename Runner>
    static bool Leaves(const Runner& run)
    {
        constexpr int enough = 600; // for rings of texts and chains of spare nodes to fill
        for (int i = 0; i < enough; ++i) {
            const long blocks = Shortage::CountBlocks();
            run();
            if (Shortage::CountBlocks() <= blocks)
                return true;
        }
        return false;
    }

    static inline const std::string events = "labsh-shortage-" + std::to_string(getpid());
    ManualClock clock; // nothing waits
    Environment environment;
};
} // namespace

TEST_F(ShortageTest, EndsNoMoreThanTheCommand)
{
    environment.SetString(L"folder", WString::FromUtf8(GetFolder().GetPath()));
    for (const Line& line : lines_lc)
        Starve(
            line, [this](const WString& text, unsigned int first, bool lasting) { return Run(text, first, lasting); });
}

TEST_F(ShortageTest, EndsNoMoreThanTheEvaluation)
{
    environment.SetString(L"a_variable_with_a_long_name", L"a text of more than fifteen characters");
    for (const std::string expression : expressions_lc)
        Starve({("Calc " + expression).c_str()},
            [this](const WString& text, unsigned int first, bool lasting) { return Run(text, first, lasting); });
    for (const char* expression : expressions_lc)
        Starve({expression},
            [](const WString& text, unsigned int first, bool lasting) { return Evaluate(text, first, lasting); });
    eeLog_gb.SetEnabled(true);
    for (const char* expression : loggedExpressions_lc)
        Starve({expression}, EvaluateLogged);
    eeLog_gb.SetEnabled(false);
}

class ShortageOfTheShell : public testing::Test
{
protected:
    /// The status with which the shell ends that runs out of memory at that allocation.
    int Run(const std::string& arguments, const char* kind, unsigned int first)
    {
        const std::string command = "LABSH_HOME='" + folder.Path("data") + "' " + kind + "=" + std::to_string(first) +
            " '" STARVING_LABSH_FILE "' " + arguments + " >'" + folder.Path("output") + "' 2>'" +
            folder.Path("errors") + "'";
        const int status = std::system(command.c_str());
        errors = folder.Read("errors");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    const TemporaryFolder folder;
    std::string errors;
};

TEST_F(ShortageOfTheShell, EndsItWithOneLine)
{
    const std::string path = folder.GetPath();
    folder.Write("Script.txt", "Calc 1\nAssert 1=1\n");
    const std::pair<std::string, std::string> starts[] = {
        {"'Calc 1+2*3'", "7\n"},
        {"--plugin '" FUNCTIONS_ONLY_FILE "' 'Calc Lab.Half(3)'", "1.5\n"},
        {"--strict -x --junit " + path + "/Report.xml --log " + path + "/Session.txt -f " + path + "/Script.txt",
            "1\n"},
        {"--check " + path + "/Script.txt", "0 errors, 0 warnings in 1 script\n"},
    };
    const auto next = [](unsigned int number) { return number + 1 + number / 8; };
    for (const auto& [arguments, output] : starts) {
        SCOPED_TRACE(arguments);
        // The first allocation is the memory that exceptions are thrown from where there is no other.
        unsigned int first = 2;
        for (; Run(arguments, "SHORTAGE_FROM", first) != 0; first = next(first)) {
            ASSERT_TRUE(errors.ends_with("labsh: out of memory\n")) << first << errors;
            // standard output may hold the start of a report
        }
        EXPECT_EQ(folder.Read("output"), output) << errors;
        EXPECT_GT(first, 500u);
        for (unsigned int at = 2; at < first; at = next(at)) {
            const int status = Run(arguments, "SHORTAGE_AT", at);
            ASSERT_TRUE(status == 0 ? folder.Read("output") == output : status > 0 && !errors.empty())
                << at << " " << status << errors;
        }
    }
}
