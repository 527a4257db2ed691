// Without arguments: the tables of the record. With an expression and a count: evaluates it so many times and prints
// nothing, for those that watch the program.
#include "Contender.h"
#include "Growth.h"
#include "Items.h"

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) // NOLINT(bugprone-exception-escape): an exception may end it
{
    if (argc == 3) {
        const auto evaluator = MakeEvaluator({argv[1]});
        for (long rest = std::strtol(argv[2], nullptr, 10); rest > 0; --rest)
            evaluator->Evaluate(0);
        return EXIT_SUCCESS;
    }
    PrintItems();
    std::puts("");
    PrintGrowth();
    return EXIT_SUCCESS;
}
