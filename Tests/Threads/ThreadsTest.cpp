// What the headers promise to be safe under threads, by eight of them at once. Each test also looks at the outcome:
// what all of them wrote is there, once and whole. The preset tsan sees the races that happen to do no harm.

#include "Commands/CommandRunner.h"
#include "Commands/PluginLoader.h"
#include "Commands/RunObserver.h"
#include "EvaluatorLog.h"
#include "Instrument/OS9EventManager.h"
#include "Instrument/System.h"
#include "Services/ObjectCounters.h"
#include "Support/Expressions.h"
#include "Support/HostTexts.h"
#include "Support/TemporaryFolder.h"
#include "Text/Abort.h"
#include "Text/Cells.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <barrier>
#include <cstdlib>
#include <latch>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <sys/mman.h>

namespace {
constexpr int threadCount = 8;

/// Lets each thread do the work, which is given the thread's number, all at once.
template <typename Work>
void RunInThreads(const Work& work)
{
    std::latch start(threadCount);
    std::vector<std::jthread> threads;
    threads.reserve(threadCount);
    for (int number = 0; number < threadCount; ++number)
        threads.emplace_back([&, number] {
            start.arrive_and_wait();
            work(number);
        });
}

std::vector<int> CountObjects()
{
    std::vector<int> counts;
    for (const DebugObjectCount& counter : GetDebugObjectCounts())
        counts.push_back(counter.read());
    return counts;
}

/// One bench for the program, with the commands of the plug-ins as they are loaded. No test leaves an object
/// behind.
class Threads : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        setenv("LABSH_EVENTS", GetEvents().c_str(), 1);
        System::Start(GetFolder().GetPath(), SOURCE_DIR "/Shell/Profile");
        PluginLoader::Load(PLUGIN_FILE);
        PluginLoader::Load(BENCH_COMMANDS_FILE);
    }
    static void TearDownTestSuite() { shm_unlink(("/" + GetEvents()).c_str()); }
    void TearDown() override { EXPECT_EQ(CountObjects(), objects); }

    static const TemporaryFolder& GetFolder()
    {
        static const TemporaryFolder folder;
        return folder;
    }

private:
    static std::string GetEvents() { return "labsh-threads-" + std::to_string(getpid()); }

    const std::vector<int> objects = CountObjects();
};
} // namespace

TEST_F(Threads, EvaluateAlike)
{
    const std::string expressions[] = {"1+2*3-4/5^2", "Max(Min(3,4),Median(3,1,2),Sum(1,2,3))", "Ftoa(1234.5,2)",
        "UCase(\"straße Ñandú\") & CStr(0.1+0.2)",
        "StrReplace(\"a text of more than fifteen characters\",\"text\",\"word\")",
        "IF(IsNA(no_variable),\"none\",no_variable*3)", "%S{VersionProductName}",
        "GetConfigInt(\"Threads\",\"Absent\",17)", "Matches(\"a text\",\"*t?xt*\")", "IF(Rand()<1,\"less\",\"more\")",
        "1/0", "Max(1,", "no_variable+1", "NoFunction(1)", "VersionCompare(\"x\",\"1\")"};
    std::vector<std::string> outcomes;
    for (const std::string& expression : expressions)
        outcomes.push_back(Outcome(expression));
    std::mutex turn;
    ExpressionEvaluator handedOn(nullptr, 0); // serves one thread at a time
    RunInThreads([&](int number) {
        ExpressionEvaluator own(nullptr, 0);
        for (std::size_t i = 0; i < 20 * outcomes.size(); ++i) {
            const std::size_t at = (i + static_cast<std::size_t>(number)) % outcomes.size();
            EXPECT_EQ(Outcome(expressions[at]), outcomes[at]);
            EXPECT_EQ(Outcome(own, expressions[at]), outcomes[at]);
            const std::lock_guard guard(turn);
            EXPECT_EQ(Outcome(handedOn, expressions[at]), outcomes[at]);
        }
        EXPECT_EQ(CountCells(L"a\u3042\u0301"), 3u);
    });
}

TEST_F(Threads, GetTheirTextsOutOfTenSlots)
{
    std::barrier<> round(threadCount);
    RunInThreads([&](int number) {
        EEToken token;
        for (int i = 0; i < 500; ++i) {
            const WString text = WString::Format(L"a text of thread %d", number);
            token.SetValue(text);
            round.arrive_and_wait();
            const wchar_t* const slot = token.GetString(false);
            round.arrive_and_wait();
            EXPECT_EQ(text, slot);
        }
    });
}

TEST_F(Threads, DrawEachRandomNumberOnce)
{
    constexpr std::size_t share = 20'000;
    Rand alone(7);
    std::vector<double> expected(threadCount * share);
    std::ranges::generate(expected, [&] { return alone.Next(); });
    System::random.Seed(7);
    std::vector<double> drawn(expected.size());
    RunInThreads([&](int number) {
        std::generate_n(drawn.begin() + number * static_cast<std::ptrdiff_t>(share), share, GetRandomNumber);
    });
    std::ranges::sort(drawn);
    std::ranges::sort(expected);
    EXPECT_EQ(drawn, expected);
}

TEST_F(Threads, KeepAllSettings)
{
    constexpr int share = 20;
    RunInThreads([](int number) {
        for (int i = 0; i < share; ++i) {
            const WString key = WString::Format(L"Number%d.%d", number, i);
            EXPECT_EQ(System::config.GetIntOrUseDefault(L"Many", key, i, ExitCode(1), 0, 1000), i);
            System::config.SetString(L"Many", key, WString::Format(L"%d", number));
            System::config.SetString(L"Many", key + L"x", L"to be deleted");
            EXPECT_TRUE(System::config.TryDelete(L"Many", key + L"x"));
            if (i % 5 == number % 5)
                System::config.Save();
            EXPECT_EQ(System::config.GetIntOrUseDefault(L"Many", key, i, ExitCode(1), 0, 1000), number);
        }
    });
    System::config.Save();
    ConfigFileData saved;
    saved.Load(GetFolder().Path("Config.ini"));
    WStringArray keys;
    saved.GetKeys(L"Many", keys);
    EXPECT_EQ(keys.Count(), threadCount * share);
    WStringArray document;
    System::config.GetMetaData().GetDocument(document);
    const auto isOfMany = [](const WString& line) { return line.View().starts_with(L"Number"); };
    EXPECT_EQ(std::ranges::count_if(document, isOfMany), threadCount * share);
}

TEST_F(Threads, KeepAllStatusItems)
{
    System::status.TryAdd(L"Text", ST_String, L"");
    System::status.TryAdd(L"Twice", ST_Formatted, L"%S{Text} %S{Text}");
    constexpr int share = 20;
    RunInThreads([](int number) {
        for (int i = 0; i < share; ++i) {
            const WString name = WString::Format(L"Own%d.%d", number, i);
            EXPECT_TRUE(System::status.TrySet(name, L"0") && System::status.TrySetAfter(name, L"1", 0));
            EXPECT_TRUE(System::status.TrySet(name + L"x", L"to be deleted") && System::status.TryDelete(name + L"x"));
            EXPECT_TRUE(System::status.TrySet(L"Text", WString(24, static_cast<wchar_t>('a' + number))));
            WString text;
            EXPECT_TRUE(System::status.TryGetFormattedString(L"Twice", text));
            const WString half(24, text.IsEmpty() ? L'?' : text[0]);
            EXPECT_EQ(text, half + L" " + half); // set as a whole, and read at one moment
            EXPECT_TRUE(System::status.TryGetFormattedString(L"InfoTime", text) && text.Length() == 8);
            if (i % 5 == number % 5)
                System::status.Save();
        }
    });
    System::status.Save();
    StatusTable saved;
    saved.Load(GetFolder().Path("Status.ini"));
    WStringArray names;
    saved.GetNames(names);
    int sum = 0;
    for (const WString& name : names)
        if (int value = 0; name.View().starts_with(L"Own") && saved.TryGetInt(name, value, 0, 1))
            sum += value;
    EXPECT_EQ(sum, threadCount * share);
}

TEST_F(Threads, CountWithoutLoss)
{
    constexpr int share = 50;
    RunInThreads([](int number) {
        const WString own = WString::Format(L"Own%d", number);
        for (int i = 0; i < share; ++i) {
            EXPECT_TRUE(System::usage.Increment(L"Written"));
            System::usage.Count(L"Gathered", 3);
            int value = 0;
            EXPECT_TRUE(
                System::usage.Set(own.ToCString(), i) && System::usage.TryGetUsageValue(own.ToCString(), value));
            EXPECT_EQ(value, i);
            System::usage.WriteCountsIfDue();
            EXPECT_TRUE(System::usage.TryDelete(own.ToCString()));
        }
    });
    int written = 0;
    int gathered = 0;
    EXPECT_TRUE(System::usage.TryGetUsageValue(L"Written", written));
    EXPECT_TRUE(System::usage.TryGetUsageValue(L"Gathered", gathered));
    EXPECT_EQ(written, threadCount * share);
    EXPECT_EQ(gathered, 3 * threadCount * share);
}

TEST_F(Threads, MakeAndDeleteAnEventOnceEach)
{
    ASSERT_TRUE(OS9EventManager::TryCreate(L"Stays", 0));
    std::atomic<int> made = 0;
    RunInThreads([&](int number) {
        for (int i = 0; i < 1000; ++i) {
            for (const wchar_t* name : {L"Stays", L"Goes"})
                if (OS9EventData* const event = OS9EventManager::GetOS9Event(name)) {
                    event->Write(number);
                    EXPECT_LT(static_cast<unsigned int>(event->Read()), 8u);
                    event->ReleaseReference();
                }
            made += OS9EventManager::TryCreate(L"Goes", number);
            made -= OS9EventManager::TryDelete(L"Goes");
        }
    });
    EXPECT_EQ(made, 0);
    EXPECT_EQ(OS9EventManager::GetReferenceCount(L"Stays"), 0);
    WStringArray names;
    OS9EventManager::GetNames(names);
    EXPECT_EQ(Join(names), "Stays");
}

namespace {
/// How many lines of the form "<thread> <count> <as many stars>" each thread has in the text, which has no others.
std::vector<int> CountLines(const std::string& text)
{
    std::vector<int> counts(threadCount);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        std::size_t number = threadCount;
        std::size_t stars = 0;
        std::string rest;
        std::istringstream(line) >> number >> stars >> rest;
        EXPECT_EQ(line, std::to_string(number) + " " + std::to_string(stars) + " " + std::string(stars, '*'));
        if (number < counts.size())
            ++counts[number];
    }
    return counts;
}
} // namespace

/// Not even while an abort is requested, which lets nobody wait for other processes.
TEST_F(Threads, LoseAndCutNoLineOfALog)
{
    constexpr int share = 150;
    LogFile large(L"", L"Large", 0x1000000);
    LogFile small(L"", L"Small", 8000);
    large.SetEnabled(true);
    small.SetEnabled(true);
    Abort::Request();
    RunInThreads([&](int number) {
        for (int i = 1; i <= share; ++i)
            for (LogFile* const log : {&large, &small})
                log->WriteLine(L"%d %d %s", number, i, WString(static_cast<std::size_t>(i), L'*'));
    });
    Abort::Clear();
    EXPECT_EQ(CountLines(GetFolder().Read("Large.txt")), std::vector<int>(threadCount, share));
    for (const char* name : {"Small.txt", "Small.old.txt"}) {
        const std::string text = GetFolder().Read(name);
        CountLines(text);
        EXPECT_TRUE(text.size() > 100 && text.size() <= 8000) << text.size();
    }
}

TEST_F(Threads, ShareTheLogsOfTheHostAndTheEvaluator)
{
    const auto countLines = [](const char* file) { return std::ranges::count(GetFolder().Read(file), '\n'); };
    constexpr int share = 10;
    eeLog_gb.SetEnabled(true);
    EXPECT_EQ(Outcome("1+1"), "2");
    const auto linesOfOne = countLines("EELog.txt");
    const auto errorsBefore = countLines("ErrorLog.txt");
    RunInThreads([](int number) {
        for (int i = 0; i < share; ++i) {
            EXPECT_EQ(Outcome("1+" + std::to_string(number)), std::to_string(1 + number));
            System::errorLog.WriteLine(L"of thread %d", number);
        }
    });
    eeLog_gb.SetEnabled(false);
    EXPECT_GT(linesOfOne, 5);
    EXPECT_EQ(countLines("EELog.txt"), linesOfOne * (1 + threadCount * share));
    EXPECT_EQ(countLines("ErrorLog.txt"), errorsBefore + long{threadCount} * share);
}

namespace {
/// Counts the command lines of its thread.
class RunCounter : public RunObserver
{
public:
    void OnEnd(const CommandRun&) noexcept override { ++count; }
    int count = 0;
};

/// A command line with what it writes and how it ends; "%d" is the number of the thread.
struct CommandRow
{
    const wchar_t* line;
    const wchar_t* output; // null for whatever others are just at
    const wchar_t* code = L"0:0:0";
};

constexpr CommandRow commands_lc[] = {
    {L"Set x=%d", L""},
    {L"While x<%d+3 Do Set x=x+1", L""},
    {L"Calc x-%d", L"3"},
    {L"If x=%d+3 Then Calc \"yes\" Else Calc \"no\"", L"yes"},
    {L"Assert x<%d", nullptr, L"9015:0:13"},
    {L"AssertFail 1043:505:133 Calc -q %d/0", L""},
    {L"Calc -h", nullptr},
    {L"Config -n [Commands]Own%d=%d", L""},
    {L"Config [Commands]Own%d", L"[Commands]Own%d=%d"},
    {L"Config -doc", nullptr},
    {L"Status -n Command%d=%d", L""},
    {L"Status Command%d", L"Command%d=%d"},
    {L"Status", nullptr},
    {L"Status -d0 Command%d=%d", L""},
    {L"Status -t0.01 Command%d=%d", L""},
    {L"Run %%E{script}", L"script %d"},
    {L"Usage Command%d=%d", L""},
    {L"Usage Command%d", L"Command%d=%d"},
    {L"Usage -json *", nullptr},
    {L"Event Command=%d", L""},
    {L"Event -z Command%d", L"", L"2004:0:5"},
    {L"Calc GetEvent(\"Command\")<8", L"TRUE"},
    {L"Echo %%S{Command%d} %%C{Commands Own%d} %%U{Command%d}", L"%d %d %d"},
    {L"Log -e ErrorLog", L""},
    {L"Log -n1", nullptr},
    {L"Help Max", nullptr},
    {L"Stats 1,2,3", nullptr},
    {L"Wait 0", L""},
    {L"Nothing%d", L"", L"0:1:2"},
};

/// Puts the number in for each "%d".
std::string Fill(const wchar_t* text, int number)
{
    return WString::Format(text, number, number, number, number).ToUtf8();
}
} // namespace

TEST_F(Threads, RunCommands)
{
    const WString script = WString::FromUtf8(GetFolder().Write("script.txt", "Echo script %E{number}\n"));
    RunInThreads([&](int number) {
        const RunCounter counter;
        Environment environment;
        environment.SetString(L"script", script);
        environment.SetString(L"number", WString::Format(L"%d", number));
        for (int round = 0; round < 3; ++round)
            for (const CommandRow& row : commands_lc) {
                ArrayPipe pipe;
                const WString line = WString::FromUtf8(Fill(row.line, number));
                const CommandRunner::Outcome outcome = CommandRunner::Run(line, pipe, environment, 0);
                EXPECT_EQ(outcome.code.ToString(), WString(row.code))
                    << line.ToUtf8() << ": " << outcome.message.ToUtf8();
                if (row.output) {
                    EXPECT_EQ(Join(pipe.lines), Fill(row.output, number)) << line.ToUtf8();
                }
            }
        EXPECT_EQ(counter.count, 3 * (static_cast<int>(std::size(commands_lc)) + 6)); // 3 by While; If, AssertFail, Run
    });
}

TEST_F(Threads, MakeAnEventTogether)
{
    std::barrier<> round(threadCount);
    RunInThreads([&](int) {
        ArrayPipe pipe;
        for (int i = 0; i < 100; ++i) {
            const WString line = WString::Format(L"Event Together%d=1", i);
            round.arrive_and_wait();
            const CommandRunner::Outcome outcome = CommandRunner::Run(line, pipe, Environment(), 0);
            EXPECT_FALSE(outcome.code.IsError()) << outcome.message.ToUtf8();
        }
    });
}

TEST_F(Threads, EndByOneAbort)
{
    std::latch begun(threadCount);
    RunInThreads([&](int) {
        ArrayPipe pipe;
        begun.arrive_and_wait();
        Abort::Request();
        const CommandRunner::Outcome outcome = CommandRunner::Run(L"While true Do Wait 1", pipe, Environment(), 0);
        EXPECT_EQ(outcome.code.ToString(), WString(L"0:1:4"));
    });
    Abort::Clear();
}
