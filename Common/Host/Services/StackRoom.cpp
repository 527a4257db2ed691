#include "Services/StackRoom.h"

#include <cstddef>
#include <cstdint>

#include <pthread.h>

namespace {

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define HAS_WIDE_FRAMES // with room around each local
#endif
#endif
#ifndef __OPTIMIZE__
#define HAS_WIDE_FRAMES
#endif

// Twice what the most demanding command takes, its messages and hints included (15.5 KiB; a level of calls takes 0.35,
// one of commands up to 4), so that commands and functions of other plug-ins have some too.
#ifdef HAS_WIDE_FRAMES
constexpr std::size_t reserve = 0x10000;
#else
constexpr std::size_t reserve = 0x8000;
#endif

/// Addresses; the stack grows towards the lower one.
struct Bounds
{
    std::uintptr_t low = 0;
    std::uintptr_t high = 0;
};

/// For the first thread the system's file of mappings is read: once is enough.
Bounds FindBounds() noexcept
{
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0)
        return {};
    void* low = nullptr;
    std::size_t size = 0;
    pthread_attr_getstack(&attributes, &low, &size);
    pthread_attr_destroy(&attributes);
    return {reinterpret_cast<std::uintptr_t>(low), reinterpret_cast<std::uintptr_t>(low) + size};
}

} // namespace

bool StackRoom::IsShort() noexcept
{
    static thread_local const Bounds bounds = FindBounds();
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0)); // a local may be elsewhere
    return here >= bounds.low && here < bounds.high && here - bounds.low < reserve;
}
