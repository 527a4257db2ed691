#include "Containers/ThreadEnd.h"

#include <cstddef>
#include <iterator>

#include <pthread.h>

namespace {
using Function = void (*)();
thread_local constinit Function functions_lc[8] = {};
thread_local constinit std::size_t count_lc = 0;

void RunAll(void*)
{
    while (count_lc > 0)
        functions_lc[--count_lc]();
}

/// A key whose values the system hands to RunAll when their thread ends.
struct Key
{
    pthread_key_t key = 0;
    const bool isMade = pthread_key_create(&key, RunAll) == 0;
};
} // namespace

bool TryRunAtThreadEnd(Function function) noexcept
{
    static const Key key;
    if (count_lc == std::size(functions_lc) || !key.isMade || pthread_setspecific(key.key, functions_lc) != 0)
        return false;
    functions_lc[count_lc++] = function;
    return true;
}
