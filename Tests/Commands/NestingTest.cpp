// What is nested too deeply for the stack of its thread fails, and ends no process.

#include "CommandTest.h"
#include "Shell/Labsh.h"
#include "Support/Expressions.h"
#include "Support/HostTexts.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include <pthread.h>
#include <sys/resource.h>

namespace {
using Nesting = CommandTest;

const std::string calls_lc = Repeat("abs(", 199) + "-1" + Repeat(")", 199);

/// The failure of a command, or of an expression, of which While tells the code alone.
const auto isTooDeep_lc = testing::AnyOf(testing::HasSubstr("nested too deeply"), testing::HasSubstr("1043:505:513"));

/// Runs the function in a thread with a stack of that many KiB.
template <typename Function>
void RunOnStack(std::size_t size, Function run)
{
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size * 1024);
    pthread_t thread = {};
    const auto start = [](void* function) -> void* {
        (*static_cast<Function*>(function))();
        return nullptr;
    };
    const int error = pthread_create(&thread, &attributes, start, &run);
    pthread_attr_destroy(&attributes);
    if (error != 0)
        throw std::runtime_error("no thread with a stack of that size");
    pthread_join(thread, nullptr);
}

/// Yields what each size, in KiB, comes to: too little for anything at first, and as much as anybody needs in the end.
template <typename Function>
std::vector<std::string> RunOnAll(const Function& run)
{
    std::vector<std::string> outcomes;
    for (std::size_t size = 64; size < 4096; size += size / 8)
        RunOnStack(size, [&] { outcomes.push_back(run()); });
    return outcomes;
}

/// Up to some size all fail; from there on all succeed.
void CheckOutcomes(const std::vector<std::string>& outcomes, const std::string& success)
{
    const auto first = std::ranges::find(outcomes, success);
    EXPECT_THAT(std::vector(outcomes.begin(), first),
        testing::AllOf(testing::Not(testing::IsEmpty()), testing::Each(isTooDeep_lc)));
    EXPECT_THAT(
        std::vector(first, outcomes.end()), testing::AllOf(testing::Not(testing::IsEmpty()), testing::Each(success)));
}
} // namespace

TEST_F(Nesting, OfCommandsEndsWithTheStack)
{
    for (const char* outer : {"If 1=1 Then ", "While -c1 1=1 Do "}) {
        const std::string line = Repeat(outer, 31) + "Calc -q " + calls_lc;
        const std::vector<std::string> outcomes = RunOnAll([&] { return Run(line) + "Again: " + Run("Say on"); });
        CheckOutcomes(outcomes, "Again: on");
        EXPECT_THAT(outcomes, testing::Contains(testing::AllOf(isTooDeep_lc, testing::EndsWith("Again: on"))));
    }
}

TEST_F(Nesting, OfCallsEndsWithTheStackBeforeAFunctionRuns)
{
    const std::string expression = "IF(IsErr(" + Repeat("abs(", 198) + "-1" + Repeat(")", 198) + "), 1, 2)";
    const std::vector<std::string> outcomes = RunOnAll([&] {
        ExpressionEvaluator evaluator(nullptr, EvaluatorFlags::traceVariables);
        const std::string outcome = Outcome(evaluator, expression);
        return outcome == "2" ? outcome : outcome + " " + evaluator.GetVariableTrace().ToUtf8();
    });
    CheckOutcomes(outcomes, "2");
    EXPECT_THAT(outcomes, testing::Each(testing::Not(testing::HasSubstr("Function:"))));
}

TEST_F(Nesting, InAShellEndsWithItsStack)
{
    rlimit usual = {};
    getrlimit(RLIMIT_STACK, &usual);
    rlimit small = usual;
    small.rlim_cur = 0x40000;
    setrlimit(RLIMIT_STACK, &small);
    const TemporaryFolder folder;
    const std::string script = folder.Write("calls.txt", "Calc " + calls_lc + "\n");
    for (const std::string line : {"While -c1 1=1 Do ", "If true Then "}) {
        for (const std::string& inner : {"Calc " + calls_lc, "Check " + script, std::string("Help Max")}) {
            Labsh labsh({Repeat(line, 62) + inner});
            EXPECT_THAT(labsh.Finish(), testing::AnyOf(isTooDeep_lc, testing::EndsWith("\nexit 0"))) << line << inner;
        }
    }
    if (std::string_view(LABSH_FILE).find("/Emulated/") == std::string_view::npos) { // which has a stack of its own
        Labsh labsh({Repeat("While -c1 1=1 Do ", 62) + "Calc " + calls_lc});
        EXPECT_THAT(labsh.Finish(), isTooDeep_lc);
    }
    setrlimit(RLIMIT_STACK, &usual);
}
