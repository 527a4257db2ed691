#include "Shortage.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#include <unistd.h>

namespace {
constexpr unsigned int never = 0;
unsigned int first_lc = never;
bool isLasting_lc = false;
unsigned int count_lc = 0;
bool hasStruck_lc = false;
long blocks_lc = 0;

/// Once the C library has the environment; allocations before that are its own.
void ReadEnvironment()
{
    static bool isRead = false;
    if (isRead || !environ)
        return;
    isRead = true;
    const char* const from = std::getenv("SHORTAGE_FROM");
    const char* const at = std::getenv("SHORTAGE_AT");
    if (const char* const number = from ? from : at) {
        first_lc = static_cast<unsigned int>(std::atoi(number));
        isLasting_lc = from != nullptr;
    }
}

/// Counts an allocation and says whether it is to fail.
bool Strikes()
{
    ReadEnvironment();
    if (first_lc == never)
        return false;
    ++count_lc;
    const bool strikes = isLasting_lc ? count_lc >= first_lc : count_lc == first_lc;
    hasStruck_lc = hasStruck_lc || strikes;
    return strikes;
}
} // namespace

Shortage::Shortage(unsigned int first, bool lasting)
{
    first_lc = first;
    isLasting_lc = lasting;
    count_lc = 0;
    hasStruck_lc = false;
}

Shortage::~Shortage()
{
    first_lc = never;
}

bool Shortage::HasStruck()
{
    return hasStruck_lc;
}

long Shortage::CountBlocks()
{
    return blocks_lc;
}

#ifdef HAS_OTHER_ALLOCATOR // that of the sanitizers
static void* Take(std::size_t size)
{
    return std::malloc(size);
}

static void Free(void* block)
{
    std::free(block);
}
#else
// The C library's own names for its functions.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);
extern "C" void __libc_free(void* block);
// NOLINTEND(bugprone-reserved-identifier)

static void* Take(std::size_t size)
{
    return __libc_malloc(size);
}

static void Free(void* block)
{
    __libc_free(block);
}

template <typename Allocate>
static void* TakeUnlessShort(const Allocate& allocate)
{
    void* const block = Strikes() ? nullptr : allocate();
    if (block)
        ++blocks_lc;
    else
        errno = ENOMEM;
    return block;
}

extern "C" [[gnu::visibility("default")]] void* malloc(std::size_t size) noexcept
{
    return TakeUnlessShort([&] { return __libc_malloc(size); });
}

extern "C" [[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t size) noexcept
{
    return TakeUnlessShort([&] { return __libc_calloc(count, size); });
}

extern "C" [[gnu::visibility("default")]] void* realloc(void* block, std::size_t size) noexcept
{
    void* const moved = TakeUnlessShort([&] { return __libc_realloc(block, size); });
    blocks_lc -= block && moved;
    return moved;
}

extern "C" [[gnu::visibility("default")]] void free(void* block) noexcept
{
    blocks_lc -= block != nullptr;
    __libc_free(block);
}
#endif

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    void* const block = Strikes() ? nullptr : Take(size == 0 ? 1 : size);
    blocks_lc += block != nullptr;
    return block;
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept
{
    return operator new(size, tag);
}

void* operator new(std::size_t size)
{
    if (void* block = operator new(size, std::nothrow))
        return block;
    throw std::bad_alloc();
}

void* operator new[](std::size_t size)
{
    return operator new(size);
}

void operator delete(void* block) noexcept
{
    blocks_lc -= block != nullptr;
    Free(block);
}

void operator delete[](void* block) noexcept
{
    operator delete(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}
