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
/// From this size on large pages pay: a small model would not fill a page of 2 MiB.
inline constexpr std::size_t MANY_BYTES = 8 * 1024 * 1024;
/// Announces that `size` bytes of objects will be created; from `MANY_BYTES` on the heap asks for large
/// pages.
void ExpectObjects(std::size_t size) noexcept;
/// Asks for large pages under a block of the C heap, from `MANY_BYTES` on. The block may still be moved and
/// freed as any other.
void AdviseLargePages(void* block, std::size_t size) noexcept;

} // namespace ZoPrimitives::Platform
