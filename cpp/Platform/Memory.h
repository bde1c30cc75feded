#pragma once

#include <cstddef>

namespace ZoPrimitives::Platform {

/// Memory of the library's own heap, aligned for any ordinary type; null when there is none.
void* Allocate(std::size_t size) noexcept;
/// `alignment`: a power of two.
void* AllocateAligned(std::size_t size, std::size_t alignment) noexcept;
/// Takes back what one of the two gave, on any thread. Null is allowed.
void Free(void* block) noexcept;
/// Gives what the calling thread's heap does not need back to the system.
void TrimMemory() noexcept;
/// Tells that `size` bytes of objects are about to be made: from a few MB on the heap asks for large pages.
void ExpectObjects(std::size_t size) noexcept;

} // namespace ZoPrimitives::Platform
