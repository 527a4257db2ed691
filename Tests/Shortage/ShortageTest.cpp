#include "Shortage.h"
#include "AssertCommand.h"
#include "BuiltIns/BuiltIn.h"
#include "Calc.h"
#include "Commands/CommandRunner.h"
#include "If.h"
#include "Instrument/System.h"
#include "Services/ObjectCounters.h"
#include "SetCommand.h"
#include "Support/Expressions.h"
#include "Support/HostTexts.h"
#include "Support/ManualClock.h"
#include "Support/TemporaryFolder.h"
#include "While.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

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
    // The shell's
    {"AssertFail 1043:505:133 Calc -q 1/0"},
    {"AssertFail 1043:* Calc -q 1", true},
    {"Config"},
    {"Config -doc"},
    {"Config -n [Section]with_a_long_name_of_a_key=\"a value with blanks in it\""},
    {"Config [Section]with_a_long_name_of_a_key"},
    {"Config *a_long*"},
    {"Echo \"a text with   blanks\" %S{VersionProductName} %E{a_variable_with_a_long_name}"},
    {"Echo %U{a reference to nothing}"},
    {"Echo \"no closing quote"},
    {"Event"},
    {"Event shortage_no_such_event"},
    {"Exit"},
    {"Help"},
    {"Help Calc"},
    {"Help Max"},
    {"Help 0:1:4"},
    {"Help V*"},
    {"Help nothing_of_that_name"},
    {"Log -n3"},
    {"Log -e ErrorLog"},
    {"Plugins", true},
    {"Run no_such_script.txt"},
    {"Stats 1,2,4"},
    {"Status V*"},
    {"Status -json V*"},
    {"Status VersionProductName=\"a product with a long name\""},
    {"Status no_item_of_that_name"},
    {"Test no_test_of_that_name"},
    {"Usage"},
    {"Usage a_counter_with_a_long_name=17"},
    {"Usage a_counter_with_a_long_name"},
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
    "Choose(2,\"a\",\"the second of the values\",\"c\")",
    "IsNum(\"a text of more than fifteen characters\")",
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
    "Format(12345.678,\"0.00\")",
    "GetProcId(\"no process has this name\")",
    "IsRunning(\"no process has this name\")",
    "FileExist(\"/no/such/file/with/a/long/name\")",
    "FileSize(\"/no/such/file/with/a/long/name\")",
    "FileCrc(\"/proc/self/no_such_file\")",
    "GetConfig(\"Section\",\"another_long_name_of_a_key\",\"a default value of some length\")",
    "GetConfigBool(\"Section\",\"a_flag_with_a_long_name\",true)",
    "GetConfigInt(\"Section\",\"a_number_with_a_long_name\",17)",
    "GetConfigDouble(\"Section\",\"a_double_with_a_long_name\",2.5)",
    "GetStatus(\"VersionProductName\")",
    "StatusExist(\"an_item_that_does_not_exist\")",
    "GetEventValue(\"shortage_no_such_event\")",
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
    "DateInt(\"nothing that is a date\")",
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
        for (const CommandFactory factory : {CreateCommandAssertCommand, CreateCommandCalc, CreateCommandIf,
                 CreateCommandSetCommand, CreateCommandWhile})
            CommandRegistry::Add(factory, PLUGIN_FILE);
        AddBuiltIns();
        static const TemporaryFolder folder; // until the end of the process, which may write to it as long
        for (const char* file : {"Config.ini", "Status.ini", "ErrorLog.txt"})
            folder.Write(file, "");
        System::Start(folder.GetPath(), folder.GetPath());
        System::status.TryAdd(L"VersionProductName", ST_String, L"OrvaneX9");
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

    static Result Evaluate(const WString& expression, unsigned int first, bool lasting)
    {
        ExpressionEvaluator evaluator(nullptr, 0);
        EEToken value;
        bool succeeded = false;
        {
            const Shortage shortage(first, lasting);
            succeeded = evaluator.TryEvaluate(expression, value);
        }
        return {succeeded ? DescribeValue(value) : DescribeError(evaluator), !succeeded};
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
            for (unsigned int first = 1;; first += 1 + first / 100) {
                const Result starved = run(line, first, lasting);
                if (!Shortage::HasStruck())
                    break;
                ASSERT_TRUE(starved.failed || row.passesOver || starved.text == fed.text)
                    << first << " " << starved.text;
                ASSERT_EQ(run(line, 0, false).text, fed.text) << first;
                ASSERT_EQ(CountObjects(), objects) << first;
            }
        }
    }

    ManualClock clock; // nothing waits
    Environment environment;
};
} // namespace

TEST_F(ShortageTest, EndsNoMoreThanTheCommand)
{
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
        Starve({expression}, Evaluate);
}

TEST(ShortageOfTheShell, EndsItWithOneLine)
{
    const TemporaryFolder folder;
    const std::string command = "LABSH_HOME='" + folder.Path("data") + "' SHORTAGE_FROM=";
    const std::string rest =
        " '" STARVING_LABSH_FILE "' 'Calc 1+2*3' >'" + folder.Path("output") + "' 2>'" + folder.Path("errors") + "'";
    int runs = 0;
    // The first allocation is the memory that exceptions are thrown from where there is no other.
    for (unsigned int first = 2;; first += 1 + first / 8) {
        const int status = std::system(std::string(command).append(std::to_string(first)).append(rest).c_str());
        ASSERT_TRUE(WIFEXITED(status)) << first << " " << status;
        const std::string errors = folder.Read("errors");
        if (WEXITSTATUS(status) == 0) {
            EXPECT_EQ(folder.Read("output") + errors, "7\n");
            break;
        }
        ++runs;
        ASSERT_EQ(WEXITSTATUS(status), 1) << first;
        ASSERT_EQ(errors, "labsh: out of memory\n") << first; // standard output may hold the start of a report
    }
    EXPECT_GT(runs, 20);
}
