#include "Allocations.h"

#include <cstddef>

static unsigned long allocationCount_lc = 0; // of the only thread

unsigned long GetAllocationCount() noexcept
{
    return allocationCount_lc;
}

// The definitions of the program stand before those of the C library, for the libraries that it loads too.
#pragma GCC visibility push(default)
extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier)
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)

void* malloc(std::size_t size)
{
    ++allocationCount_lc;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    ++allocationCount_lc;
    return __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    ++allocationCount_lc;
    return __libc_realloc(block, size);
}
}
#pragma GCC visibility pop
