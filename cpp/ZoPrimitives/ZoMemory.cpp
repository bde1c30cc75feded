#include "ZoPrimitives/ZoMemory.h"

#include "Platform/Memory.h"

namespace ZoPrimitives {

namespace {

void* Checked(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

} // namespace

void* ZoAllocate(std::size_t size) { return Checked(Platform::Allocate(size)); }

void* ZoAllocateAligned(std::size_t size, std::size_t alignment) {
    return Checked(Platform::AllocateAligned(size, alignment));
}

void ZoFree(void* block) noexcept { Platform::Free(block); }

void ZoTrimMemory() noexcept { Platform::TrimMemory(); }

} // namespace ZoPrimitives
