#include "Platform/Memory.h"

#include <cstdint>
#include <sys/mman.h>

namespace ZoPrimitives::Platform {

void AdviseLargePages(void* block, std::size_t size) noexcept {
    if (size < MANY_BYTES) return;
    // Outward to whole pages: a mapping that is advised in part becomes several, and can no longer grow
    // without a copy.
    constexpr std::uintptr_t PAGE = 4096;
    const auto begin = reinterpret_cast<std::uintptr_t>(block) & ~(PAGE - 1);
    const auto end = (reinterpret_cast<std::uintptr_t>(block) + size + PAGE - 1) & ~(PAGE - 1);
    madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

} // namespace ZoPrimitives::Platform
