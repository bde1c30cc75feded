#pragma once

#include "ZoPrimitives/Export.h"

#include <cstddef>
#include <new>
#include <vector>

namespace ZoPrimitives {

// The library's own heap. It holds objects and the arrays of containers, whichever module creates or destroys
// them. Texts (`ZoString`) and blocks that are handed over stay on the C heap.

/// A block aligned for any ordinary type. Throws `std::bad_alloc`.
ZO_API void* ZoAllocate(std::size_t size);
/// `alignment` must be a power of two.
ZO_API void* ZoAllocateAligned(std::size_t size, std::size_t alignment);
/// Frees a block of either function, on any thread. Null is allowed.
ZO_API void ZoFree(void* block) noexcept;
/// Returns this thread's unused memory to the system. This also happens by itself when many objects are
/// destroyed at once.
ZO_API void ZoTrimMemory() noexcept;

/// Allocator for standard containers.
template <class T>
struct ZoAllocator {
    using value_type = T;

    ZoAllocator() = default;
    template <class U>
    ZoAllocator(const ZoAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_alloc();
        if constexpr (alignof(T) > alignof(std::max_align_t)) {
            return static_cast<T*>(ZoAllocateAligned(count * sizeof(T), alignof(T)));
        } else {
            return static_cast<T*>(ZoAllocate(count * sizeof(T)));
        }
    }
    void deallocate(T* block, std::size_t) noexcept { ZoFree(block); }

    template <class U>
    bool operator==(const ZoAllocator<U>&) const noexcept {
        return true;
    }
    template <class U>
    bool operator!=(const ZoAllocator<U>&) const noexcept {
        return false;
    }
};

template <class T>
using ZoVector = std::vector<T, ZoAllocator<T>>;

} // namespace ZoPrimitives
