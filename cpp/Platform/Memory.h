#pragma once

#include <cstddef>

namespace ZoPrimitives::Platform {

/// Allocates on the library's own heap, aligned for any ordinary type; null when memory is short.
void* Allocate(std::size_t size) noexcept;
/// `alignment` must be a power of two.
void* AllocateAligned(std::size_t size, std::size_t alignment) noexcept;
/// Frees a block of either function, on any thread. Null is allowed.
void Free(void* block) noexcept;
/// Returns unused memory of the calling thread's heap to the system.
void TrimMemory() noexcept;
/// Announces that `size` bytes of objects will be created; from a few MB on the heap asks for large pages.
void ExpectObjects(std::size_t size) noexcept;

} // namespace ZoPrimitives::Platform
