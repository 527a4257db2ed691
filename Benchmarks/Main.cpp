// Without arguments: the tables of the record. With an expression and a count: evaluates it so many times, for those
// that watch the program, and prints its value or what is wrong with it to standard error.
#include "Contender.h"
#include "Growth.h"
#include "Items.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <variant>

int main(int argc, char** argv) // NOLINT(bugprone-exception-escape): an exception may end it
{
    if (argc == 3) {
        const auto evaluator = MakeEvaluator({argv[1]});
        for (long rest = std::strtol(argv[2], nullptr, 10); rest > 0; --rest)
            evaluator->Evaluate(0);
        const Value value = evaluator->GetValue();
        const std::string* const text = std::get_if<std::string>(&value);
        std::fprintf(stderr, "%s\n", text ? text->c_str() : std::to_string(std::get<double>(value)).c_str());
        return EXIT_SUCCESS;
    }
    PrintItems();
    std::puts("");
    PrintGrowth();
    return EXIT_SUCCESS;
}
