#include "Platform/Compiler.h"
#include "Platform/Platform.h"

#include <algorithm>
#include <cstdint>
#include <pthread.h>
#include <sys/resource.h>

namespace ZoPrimitives::Platform {

namespace {

struct Bounds {
    std::uintptr_t low = 0;
    std::size_t size = 0;
};

/// For when the system does not tell (no memory, no /proc): half of the usual stack, downward from here.
Bounds Guessed(std::uintptr_t here) {
    constexpr rlim_t USUAL = 8 << 20;
    rlimit limit{};
    const bool known = getrlimit(RLIMIT_STACK, &limit) == 0;
    const auto size = static_cast<std::size_t>(known ? std::min(limit.rlim_cur, USUAL) : USUAL) / 2;
    return {here - size, size};
}

Bounds Measured(std::uintptr_t here) {
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) return Guessed(here);
    void* low = nullptr;
    std::size_t size = 0;
    const bool known = pthread_attr_getstack(&attributes, &low, &size) == 0;
    pthread_attr_destroy(&attributes);
    return known ? Bounds{reinterpret_cast<std::uintptr_t>(low), size} : Guessed(here);
}

} // namespace

Stack CallersStack() {
    const std::uintptr_t here = StackAddress();
    thread_local const Bounds bounds = Measured(here);
    if (here < bounds.low || here - bounds.low > bounds.size) return {};
    return {bounds.size, static_cast<std::size_t>(here - bounds.low)};
}

} // namespace ZoPrimitives::Platform
