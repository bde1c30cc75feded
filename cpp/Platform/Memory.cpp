#include "Platform/Memory.h"

#ifdef ZO_C_HEAP

#include <algorithm>
#include <cstdlib>

namespace ZoPrimitives::Platform {

// The C heap, which sanitizers and valgrind can check.
void* Allocate(std::size_t size) noexcept { return std::malloc(std::max<std::size_t>(size, 1)); }

void* AllocateAligned(std::size_t size, std::size_t alignment) noexcept {
    return std::aligned_alloc(alignment, (std::max<std::size_t>(size, 1) + alignment - 1) & ~(alignment - 1));
}

void Free(void* block) noexcept { std::free(block); }
void TrimMemory() noexcept {}
void ExpectObjects(std::size_t) noexcept {}

} // namespace ZoPrimitives::Platform

#else

#include <mimalloc.h>

namespace ZoPrimitives::Platform {

void* Allocate(std::size_t size) noexcept { return mi_malloc(size); }

void* AllocateAligned(std::size_t size, std::size_t alignment) noexcept {
    return mi_malloc_aligned(size, alignment);
}

void Free(void* block) noexcept { mi_free(block); }

void TrimMemory() noexcept { mi_collect(true); }

void ExpectObjects(std::size_t size) noexcept {
    if (size >= MANY_BYTES && !mi_option_is_enabled(mi_option_large_os_pages))
        mi_option_enable(mi_option_large_os_pages);
}

} // namespace ZoPrimitives::Platform

#endif
