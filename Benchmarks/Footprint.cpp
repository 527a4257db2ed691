// What command lines take of a small computer, with the plug-in as it is loaded from the given file: the stack of the
// deepest nesting, the heap in use, and the time. footprint.sh runs it.

#include "Commands/CommandRunner.h"
#include "Commands/PluginLoader.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <malloc.h>
#include <pthread.h>
#include <string>
#include <vector>

namespace {
const char* const lines_lc[] = {"Calc 1+2*3", "Calc (1+2)*(3-4)/(5+6)-7*8+9", "Calc sqrt(2)+sin(0.5)*cos(0.25)",
    "Calc 2^3^2", "Calc \"Waiting for the \" & \"sample carrier\"", "Calc Round(PI,3)", "Calc 1/0", "Calc IsErr(1/0)",
    "Set x=5"};

struct NoOutput : Pipe
{
    void DoWriteLine(const WString&) override {}
};

bool TryRun(const std::string& line)
{
    static const Environment environment;
    NoOutput output;
    return !CommandRunner::Run(WString::FromUtf8(line), output, environment, 0).code.IsError();
}

/// As many calls as may nest.
std::string MakeNested(const std::string& call, const std::string& innermost, const std::string& end)
{
    std::string line = "Calc ";
    for (int level = 0; level < 200; ++level)
        line += call;
    line += innermost;
    for (int level = 0; level < 200; ++level)
        line += end;
    return line;
}

/// The bytes of stack that the line takes: those of a thread's that have changed.
std::size_t MeasureStack(const std::string& line, bool succeeds)
{
    constexpr unsigned char paint = 0xA5;
    static std::vector<unsigned char> stack(0x200000);
    std::ranges::fill(stack, paint);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, stack.data(), stack.size());
    std::function<void()> run = [&] {
        if (TryRun(line) != succeeds)
            std::abort();
    };
    pthread_t thread = {};
    const auto call = [](void* function) -> void* {
        (*static_cast<std::function<void()>*>(function))();
        return nullptr;
    };
    if (pthread_create(&thread, &attributes, call, &run) != 0)
        std::abort();
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    return static_cast<std::size_t>(stack.end() - std::ranges::find_if(stack, [](auto byte) { return byte != paint; }));
}

void PrintStack(const char* shape, const std::string& line, bool succeeds)
{
    std::printf("| stack of 200 `%s` | %zu KiB |\n", shape, (MeasureStack(line, succeeds) + 1023) / 1024);
}

/// Runs the lines in turn, so many in all.
void RunLines(std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        TryRun(lines_lc[i % std::size(lines_lc)]);
}
} // namespace

int main(int, char** arguments)
{
    PluginLoader::Load(arguments[1]);
    constexpr std::size_t few = 1000;
    constexpr std::size_t many = 100'000;
    RunLines(few);
    const std::size_t atFirst = mallinfo2().uordblks;
    const std::clock_t start = std::clock();
    RunLines(many);
    const std::clock_t end = std::clock();
    const std::size_t atEnd = mallinfo2().uordblks; // before the first output, which has a buffer
    std::printf("| heap in use after %zu lines | %zu bytes |\n", few, atFirst);
    std::printf("| and after %zu more | %zu bytes |\n", many, atEnd);
    std::printf("| time of a line | %.2f us |\n", static_cast<double>(end - start) * 1e6 / CLOCKS_PER_SEC / many);
    PrintStack("abs(", MakeNested("abs(", "1", ")"), true);
    PrintStack("IF(true,", MakeNested("IF(true,", "1", ",0)"), true);
    PrintStack("abs(` around `1/0", MakeNested("abs(", "1/0", ")"), false);
}
